#pragma once

#include "generators/canopen/objdictcontext.h"

class CodeWriter;

/// The tables of values of the generated dictionary and the structure that names them all.
class ObjDictTables
{
public:
    ObjDictTables(const ObjDictContext &context, CodeWriter &out) : m_context(context), m_out(out)
    {
    }

    void writeManagedVariables();
    void writeConstants();
    /// The start values of string variables, for `writeStringOverwrite`.
    void writeStringDefaults();
    void writeApplicationVariables();
    void writeDataVariables();
    /// The function that copies the start values into the application's strings.
    void writeStringOverwrite();

private:
    struct StringDefault
    {
        QByteArray variable;
        QByteArray bytes;
    };

    void writeManagedTable(TableGroup group, const QString &specifier, bool isInitialised);
    void writeConstantTable(TableGroup group);
    void writeStringTable(TableGroup group, const std::vector<QByteArray> &strings);
    void writeNumberPointers(TableGroup group);
    void writeStringPointers(TableGroup group);
    [[nodiscard]] std::vector<StringDefault> stringDefaults() const;

    const ObjDictContext &m_context;
    CodeWriter &m_out;
};
