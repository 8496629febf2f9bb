#pragma once

#include "generators/canopen/objdictcontext.h"

class CodeWriter;

/// The head of the generated dictionary: includes, macros, init structures, row counts.
class ObjDictHead
{
public:
    ObjDictHead(const ObjDictContext &context, CodeWriter &out) : m_context(context), m_out(out) {}

    /// `outputFolder` may hold the file that keeps stdlib.h away.
    void writeIncludes(const QString &outputFolder, bool serverOnly);
    void writeApplicationHeaders();
    /// The qualifier macros, for a stack that doesn't define them.
    void writeMacros();
    /// The init structures of the stack.
    void writeInitStructures();
    void writeCounts();

    /// The project needs gen_user.h.
    [[nodiscard]] bool hasUserHeader() const;
    /// gen_user.h behind its banner.
    [[nodiscard]] static QString userHeader(const ObjDictContext &context);
    /// The file in the output folder that keeps `#include <stdlib.h>` away.
    static constexpr const char *noStdlibFile = "no_stdlib_include.txt";

private:
    const ObjDictContext &m_context;
    CodeWriter &m_out;
};
