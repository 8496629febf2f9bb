#pragma once

#include "generators/base/abstractgenerator.h"
#include "store/objectdatabase.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// A project and a folder for the document tests; the clock stands still.
class DocumentProject
{
public:
    using Object = ObjectDataBase::INDEX_DATA_T;
    using Entry = ObjectDataBase::SUBINDEX_DATA_T;

    static void initApplication()
    {
        QCoreApplication::setApplicationName(QStringLiteral("Doc Test"));
        QCoreApplication::setApplicationVersion(QStringLiteral("1.2.3"));
        qputenv("SOURCE_DATE_EPOCH", "1700000000"); // 2023-11-14 22:13:20 UTC
    }

    DocumentProject()
    {
        m_isReady = m_store.createNewDataBase();
        m_store.addNode(0, {});
        m_store.addNode(1, {});
    }

    [[nodiscard]] bool isReady() const { return m_isReady && m_folder.isValid(); }
    ObjectDataBase &store() { return m_store; }

    void add(quint16 index, quint32 type, const QString &name, const QString &description = {},
             quint16 dataType = 0, quint8 line = 0)
    {
        Object data;
        data.name = name;
        data.objecttype = type;
        data.description = description;
        data.datatype = dataType;
        m_store.addIndex(line, index, data);
    }
    void add(quint16 index, quint8 subindex, const Entry &data, quint8 line = 0)
    {
        m_store.addSubIndex(line, index, subindex, data);
    }
    static Entry entry(const QString &name, quint16 type, const QString &access = "rw",
                       const QString &value = {}, const QString &description = {})
    {
        Entry data;
        data.name = name;
        data.datatype = type;
        data.accesstype = access;
        data.defaultvalue = value;
        data.description = description;
        return data;
    }

    /// A variable, a record and an array with what every document shows.
    void fill()
    {
        add(0x1018, CANopen::RECORD, "Identity", "Who\nit is", 0x23);
        add(0x1018, 0, entry("Highest subindex", CAN::UNSIGNED8, "const", "1"));
        Entry vendor = entry("Vendor $i", CAN::UNSIGNED32, "ro", "|x0x319", "number\r\nof CiA");
        vendor.defaultineds = true;
        vendor.writedefaulttoeds = 1;
        vendor.implementation = CANopen::ManagedConst;
        add(0x1018, 1, vendor);

        add(0x2000, CANopen::VAR, "Level {$I}", "", CAN::INTEGER16);
        Entry level = entry("Level", CAN::INTEGER16, "rwr", "-5");
        level.pdomapping = PDOMapping::TPDO;
        level.limitineds = true;
        level.lowlimit = "-10";
        level.uplimit = "10";
        level.implementation = CANopen::Variable;
        level.varname = "level$i";
        level.nvstorage = true;
        add(0x2000, 0, level);

        add(0x2001, CANopen::DOMAIN_OBJECT, "", "", CAN::DOMAIN_TYPE);
        Entry domain = entry("Firmware", CAN::DOMAIN_TYPE, "wo");
        domain.size = 512;
        add(0x2001, 0, domain);
        add(0x0005, CANopen::DEFTYPE, "below the documents");
        add(0x3000, CANopen::VAR, "other line", "", CAN::BOOLEAN, 1);
        add(0x3000, 0, entry("other line", CAN::BOOLEAN), 1);
    }

    QString generate(AbstractGenerator &generator, quint8 line = 0, bool multiLine = false)
    {
        generator.setMultiLine(multiLine);
        generator.setOutputFolder(m_folder.path());
        generator.setStore(&m_store);
        generator.setProjectName(m_name);
        generator.setLine(line);
        generator.doJob();
        QFile file(m_folder.filePath(generator.fileName()));
        if (generator.errorCode() != 0 || !file.open(QIODevice::ReadOnly))
            return QStringLiteral("no file: ") + generator.errorString();
        return QString::fromUtf8(file.readAll());
    }
    void setName(const QString &name) { m_name = name; }
    [[nodiscard]] QString folder() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
    ObjectDataBase m_store;
    QString m_name = QStringLiteral("device");
    bool m_isReady = false;
};
