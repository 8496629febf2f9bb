#include "documents/icsvgenerator.h"

#include "documents/csvrow.h"
#include "generators/base/codewriter.h"

namespace {

QString flag(bool on)
{
    return on ? QStringLiteral("yes") : QStringLiteral("no");
}

} // namespace

void ICSVGenerator::writeDocument(QIODevice &device)
{
    CodeWriter out(&device);
    out << "# This is an importable ICSV file for the " << m_projectName.simplified()
        << " project.\n#\n"
           "index,sub,objectcode,datatype,edsname,varname,access,mapable,hasdefault,defaultineds,"
           "value,"
        << (m_withDescription ? "description," : "")
        << "size,implementation,haslimit,lowlimit,uplimit,nvstorage\n";
    walkObjects([&](const Object &object) {
        if (object.isCompound() || object.entries.empty())
            out << objectRow(object);
        for (const Entry &entry : object.entries)
            out << entryRow(object, entry);
    });
}

QString ICSVGenerator::objectRow(const Object &object) const
{
    const QString none;
    QList<CsvRow::Field> fields = {CsvRow::indexText(object.index),
                                   none, // sub
                                   CsvRow::objectCodeWord(object.data.objecttype),
                                   dataTypeText(object.dataType()),
                                   object.data.name,
                                   none,  // varname
                                   none,  // access
                                   none,  // mapable
                                   none,  // hasdefault
                                   none,  // defaultineds
                                   none}; // value
    if (m_withDescription)
        fields.append(object.data.description);
    fields += {none,  // size
               none,  // implementation
               none,  // haslimit
               none,  // lowlimit
               none,  // uplimit
               none}; // nvstorage
    return CsvRow::text(fields);
}

QString ICSVGenerator::entryRow(const Object &object, const Entry &entry) const
{
    const ObjectDataBase::SUBINDEX_DATA_T &data = entry.data;
    // A variable has one row for itself and its value.
    const bool isVariable = !object.isCompound() && entry.subindex == 0;
    QList<CsvRow::Field> fields = {
        CsvRow::indexText(object.index),
        CsvRow::subindexText(entry.subindex),
        entry.subindex == 0 ? CsvRow::objectCodeWord(object.data.objecttype) : QString(),
        dataTypeText(data.datatype),
        isVariable ? object.data.name : data.name,
        CsvRow::Variable{data.varname},
        data.accesstype,
        data.pdomapping.getCSVStringValue(),
        flag(data.defaultineds),
        flag(isDefaultExported(data)),
        data.defaultvalue};
    if (m_withDescription) {
        const bool isObjectText = isVariable && data.description.isEmpty();
        fields.append(isObjectText ? object.data.description : data.description);
    }
    fields += {QString::number(data.size),
               CsvRow::implementationWord(data.implementation),
               flag(data.limitineds),
               data.lowlimit,
               data.uplimit,
               QString::number(data.nvstorage ? 1 : 0)};
    return CsvRow::text(fields);
}
