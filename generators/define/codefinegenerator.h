#pragma once

#include "generators/base/filegenerator.h"
#include "generators/base/stackdialect.h"
#include "generators/define/usersection.h"

#include <memory>

class CodeWriter;
class DefineSections;
struct DefineFacts;

/// gen_define.h for the older generation of the stack: which services exist, and how many of each.
///
/// The lines between the user's marker comments and the number of generations are taken over from
/// the former file. As long as the new one is not complete the former one stays in its place; a
/// former file that can't be read is never replaced.
class CoDefineGenerator : public FileGenerator
{
    Q_OBJECT

public:
    explicit CoDefineGenerator(QObject *parent = nullptr)
        : CoDefineGenerator(StackDialect::v3(), parent)
    {
    }

    /// The file is made for the network tool, which counts the generations itself.
    void setFromNetworkTool(bool fromNetworkTool) { m_fromNetworkTool = fromNetworkTool; }

    /// The user's lines that the run has found; valid after it.
    [[nodiscard]] QString userSection() const { return QString::fromUtf8(m_section.lines); }
    [[nodiscard]] QString remark() const override;

protected:
    CoDefineGenerator(const StackDialect &dialect, QObject *parent);

    void prepare() override;
    void writeContent(QIODevice &device) override;
    void cleanUp() override;

private:
    void writeHead(CodeWriter &out) const;
    void writeSections(DefineSections &sections, const DefineFacts &facts);
    void writeGenerationCount(CodeWriter &out, const DefineFacts &facts) const;
    void discard(QIODevice &device);
    [[nodiscard]] QString bannerDate() const;

    const StackDialect &m_dialect;
    bool m_fromNetworkTool = false;
    UserSection m_section;
    QByteArray m_formerFile;
};
