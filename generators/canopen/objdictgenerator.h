#pragma once

#include "generators/base/filegenerator.h"
#include "generators/canopen/objdictcontext.h"

#include <memory>

class CodeWriter;

/// gen_objdict.c for the older generation of the stack: the object dictionaries of all CANopen
/// lines as C tables, and the functions that start the stack with them.
///
/// The sections are operations of their own, in the order in which they stand in the file, so
/// that a generator for several protocols can use them one by one between `collect` and the end
/// of its run.
class ObjDictGenerator : public FileGenerator
{
    Q_OBJECT

public:
    /// `compactDescription`: runs of like subindices share one row.
    explicit ObjDictGenerator(bool compactDescription, QObject *parent = nullptr);
    ~ObjDictGenerator() override;

    /// Only the dictionary, for the SDO server of a J1939 device (CiA 510).
    void setServerOnly(bool serverOnly) { m_serverOnly = serverOnly; }

protected:
    ObjDictGenerator(bool compactDescription, const StackDialect &dialect, QObject *parent);

    void writeContent(QIODevice &device) override;

    /// Reads the dictionaries; every section below needs it.
    void collect();
    void writeHead(CodeWriter &out);
    void writeValueTables(CodeWriter &out);
    void writeDescription(CodeWriter &out);
    void writeAssignment(CodeWriter &out);
    void writePdoTables(CodeWriter &out);
    void writeDataVariables(CodeWriter &out);
    void writeInitialisation(CodeWriter &out);
    /// COB-ID and string functions.
    void writeUserFunctions(CodeWriter &out);
    /// gen_user.h, where the project needs it.
    void writeUserHeader();
    /// Tells what could not be generated as it was told.
    void reportProblems();

    [[nodiscard]] const ObjDictContext &context() const { return *m_context; }
    [[nodiscard]] const DictionaryFacts &facts() const { return m_facts; }
    [[nodiscard]] const StackDialect &dialect() const { return m_dialect; }

private:
    const StackDialect &m_dialect;
    bool m_compactDescription;
    bool m_serverOnly = false;
    DictionaryOptions m_options;
    DictionaryFacts m_facts;
    std::unique_ptr<ObjDictContext> m_context;
};
