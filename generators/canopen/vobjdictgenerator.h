#pragma once

#include "generators/base/filegenerator.h"
#include "generators/base/stackdialect.h"

#include <memory>

class CodeWriter;
struct ObjDictContext;

/// gen_vobjdict.c for the older generation of the stack: the rows of virtual objects, whose
/// values live in memory without addresses.
class VobjDictGenerator : public FileGenerator
{
    Q_OBJECT

public:
    explicit VobjDictGenerator(QObject *parent = nullptr)
        : VobjDictGenerator(StackDialect::v3(), parent)
    {
    }

    /// The project is known to have virtual objects of its own making.
    void setVirtualObjects(bool virtualObjects) { m_virtualObjects = virtualObjects; }
    /// There is something to write: a virtual subindex on a line, or the flag.
    [[nodiscard]] bool hasContent() const override;

protected:
    VobjDictGenerator(const StackDialect &dialect, QObject *parent);

    void writeContent(QIODevice &device) override;

private:
    [[nodiscard]] QString title() const;
    void writeVariables(const ObjDictContext &context, CodeWriter &out) const;

    const StackDialect &m_dialect;
    bool m_virtualObjects = false;
};
