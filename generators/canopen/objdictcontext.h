#pragma once

#include "generators/base/dictionaryfacts.h"
#include "generators/base/stackdialect.h"

#include <QByteArray>

class ObjectDataBase;

/// What every section of the generated dictionary reads. Does not own anything.
struct ObjDictContext
{
    ObjectDataBase &store;
    const StackDialect &dialect;
    const DictionaryFacts &facts;
    const DictionaryOptions &options;
    bool fdMode = false;           ///< CAN FD
    bool dynamicOptions = false;   ///< `enable_dynamic`: master or slave is chosen at run time
    bool newInitStructure = false; ///< the init structures are part of the file

    /// The setting as a number; 0 for what is empty or no number.
    [[nodiscard]] int number(const char *key) const;
    [[nodiscard]] int lineNumber(const char *key, quint8 line) const;
    /// Any line has the setting above 0.
    [[nodiscard]] bool isOnAnyLine(const char *key) const;
    [[nodiscard]] bool isOverwriting() const { return isOnAnyLine("overwrite_predef"); }
    [[nodiscard]] bool hasStringDefaults() const { return number("generate_string_defaults") > 0; }
    /// The master role that the project gives to a line.
    [[nodiscard]] bool isMaster(quint8 line) const;

    // --- Expressions ------------------------------------------------------------------------

    /// Address of what an entry holds, as "&od_u8[3]"; "NULL" if nothing in memory holds it.
    [[nodiscard]] QByteArray address(const DictionaryFacts::Entry &entry) const;
    /// The default value of a subindex as an element of its table of constants, or "0u".
    [[nodiscard]] QByteArray constantOf(quint8 line, quint16 index, quint8 sub) const;
    /// A variable of the application: "&(name)", or the text itself if it is an expression.
    [[nodiscard]] static QByteArray variable(const QString &varName);
    /// "/* 0x2000:1 */" without its marks; with the line in the per line form.
    [[nodiscard]] QByteArray place(const DictionaryFacts::Place &place) const;
};
