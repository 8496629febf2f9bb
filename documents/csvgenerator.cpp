#include "documents/csvgenerator.h"

#include "documents/csvrow.h"
#include "generators/base/codewriter.h"

namespace {

QString flag(bool on)
{
    return on ? QStringLiteral("yes") : QStringLiteral("NONE");
}

} // namespace

void CSVGenerator::writeDocument(QIODevice &device)
{
    CodeWriter out(&device);
    out << "Index,Sub,EDSname,Datatype,Access,Value,varname,LowLimit,UpLimit,hasDefault,hasLimit,"
           "refuseRead,refuseWrite,defaultInEDS,implementation,Size,ObjectCode,mapable\n";
    walkObjects([&](const Object &object) {
        if (object.isCompound() || object.entries.empty())
            out << objectRow(object);
        for (const Entry &entry : object.entries)
            out << entryRow(object, entry);
    });
}

QString CSVGenerator::objectRow(const Object &object)
{
    const QString none;
    return CsvRow::text({CsvRow::indexText(object.index),
                         none, // Sub
                         object.data.name, dataTypeText(object.dataType()),
                         none,                                                   // Access
                         none,                                                   // Value
                         none,                                                   // varname
                         none,                                                   // LowLimit
                         none,                                                   // UpLimit
                         none,                                                   // hasDefault
                         none,                                                   // hasLimit
                         none,                                                   // refuseRead
                         none,                                                   // refuseWrite
                         none,                                                   // defaultInEDS
                         none,                                                   // implementation
                         none,                                                   // Size
                         CsvRow::objectCodeWord(object.data.objecttype), none}); // mapable
}

QString CSVGenerator::entryRow(const Object &object, const Entry &entry)
{
    const ObjectDataBase::SUBINDEX_DATA_T &data = entry.data;
    // A variable has one row for itself and its value.
    const bool isVariable = !object.isCompound() && entry.subindex == 0;
    return CsvRow::text(
        {CsvRow::indexText(object.index), CsvRow::subindexText(entry.subindex),
         isVariable ? object.data.name : data.name, dataTypeText(data.datatype), data.accesstype,
         data.defaultvalue, CsvRow::Variable{data.varname}, data.lowlimit, data.uplimit,
         flag(data.defaultineds), flag(data.limitineds), flag(data.refuseread),
         flag(data.refusewrite), flag(isDefaultExported(data)),
         CsvRow::implementationWord(data.implementation), QString::number(data.size),
         isVariable ? CsvRow::objectCodeWord(object.data.objecttype) : QString(),
         data.pdomapping.getCSVStringValue()});
}
