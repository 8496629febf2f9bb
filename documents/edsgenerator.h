#pragma once

#include "canopen/objectranges.h"
#include "generators/base/abstractgenerator.h"
#include "generators/base/filegenerator.h"
#include "store/objectdatabase.h"

class CodeWriter;

/// Writes the Electronic Data Sheet (CiA 306) of one line. A project can have several variants:
/// objects and subindices with the metadata attribute `eds_define` belong to the variant of that
/// name alone, all others to every variant. With CANopen FD there is a classical form besides,
/// without the objects that only FD devices have.
class EDSGenerator : public FileGenerator
{
    Q_OBJECT

public:
    explicit EDSGenerator(const QString &edsDefine = QString(), bool fdMode = false,
                          bool classical = false, QObject *parent = nullptr);

    [[nodiscard]] QString fileName() const override;

    /// The variants of a line in the order of their appearance; the first is always the empty
    /// name. Variants of subindices count only below an object that has the attribute itself.
    [[nodiscard]] static QStringList variants(ObjectDataBase &store, quint8 line);

protected:
    void writeContent(QIODevice &device) override;

private:
    struct Object
    {
        quint16 index = 0;
        ObjectDataBase::INDEX_DATA_T data;
    };

    void collectObjects();
    void writeFileInfo(CodeWriter &out) const;
    void writeComments(CodeWriter &out) const;
    void writeDeviceInfo(CodeWriter &out) const;
    void writeDummyUsage(CodeWriter &out) const;
    void writeObjectLists(CodeWriter &out) const;
    void writeObject(CodeWriter &out, const Object &object) const;
    void writeSubObjects(CodeWriter &out, const Object &object) const;
    static void writeEntry(CodeWriter &out, const ObjectDataBase::SUBINDEX_DATA_T &entry);
    static void writeDescription(CodeWriter &out, const QString &text);

    [[nodiscard]] bool isInVariant(const ObjectDataBase::MetaData &metadata) const;
    [[nodiscard]] QString identityValue(quint8 subindex) const;
    [[nodiscard]] int countObjects(const ObjectRange &range) const;
    [[nodiscard]] bool hasGroupMapping() const;

    QString m_edsDefine;
    bool m_fdMode;
    bool m_classical;
    QList<quint16> m_allIndices; ///< of the line, whatever the variant
    QList<Object> m_objects;     ///< those of this file
};
