#include "documents/htmlgenerator.h"

#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "documents/htmlpage.h"
#include "generators/base/codewriter.h"

namespace {

constexpr const char *tableWidth = "70%";

QString anchorOf(quint16 index)
{
    return QLatin1String("index") + IndexText::digits(index);
}

/// Strings and domains are as long as their record says; all others as their type.
quint32 sizeInBytes(const ObjectDataBase::SUBINDEX_DATA_T &entry)
{
    const quint32 bits = COHelper::getDataLengthBits(entry.datatype);
    return bits > 0 ? (bits + 7) / 8 : entry.size;
}

} // namespace

void HTMLGenerator::writeDocument(QIODevice &device)
{
    CodeWriter out(&device);
    HtmlPage page(out);
    const HtmlPage::Title title = {QStringLiteral("Object Dictionary Documenation of "),
                                   QStringLiteral("Object Dictionary Documentation of "),
                                   m_projectName, m_toolVersion};
    page.begin(title);
    page.writeHeadTable(title, *store());

    page.beginContents();
    const QList<quint16> indices = store()->getIndices(m_line, ObjectRanges::device.low);
    for (const quint16 index : indices)
        page.contentsLink(anchorOf(index), IndexText::hex(index));
    page.endContents();

    page.beginBlocks();
    bool isFirst = true;
    walkObjects([&](const Object &object) {
        if (!isFirst)
            page.rule();
        isFirst = false;
        writeObject(page, object);
    });
    page.end();
}

void HTMLGenerator::writeObject(HtmlPage &page, const Object &object) const
{
    page.beginBlock(tableWidth);
    page.blockTitle(
        anchorOf(object.index),
        QStringLiteral(" Object: %1 - %2").arg(IndexText::hex(object.index), nameOf(object)));
    page.row("Object Code", COHelper::objectCode2String(object.data.objecttype));
    page.row("Description", object.data.description);
    page.endBlock();
    for (const Entry &entry : object.entries)
        writeEntry(page, object, entry);
}

void HTMLGenerator::writeEntry(HtmlPage &page, const Object &object, const Entry &entry) const
{
    const ObjectDataBase::SUBINDEX_DATA_T &data = entry.data;
    const QString name = nameOf(object, entry);
    page.beginBlock(tableWidth);
    page.headRow(QStringLiteral("Sub "),
                 IndexText::subHex(entry.subindex) + QLatin1String(" - ") + name);
    page.row("Name ", name);
    page.row("Data Type", dataTypeText(data.datatype));
    page.row("Access ", data.accesstype);
    page.row("Defaultvalue ", plainValue(data.defaultvalue));
    page.row("Low Limit ", data.lowlimit);
    page.row("High Limit ", data.uplimit);
    page.row("PDO Mapping", COHelper::pdoMapping2String(data.pdomapping));
    page.row("Implementation Type", COHelper::implementation2String(data.implementation));
    page.row("Variable Name", variableName(object, entry));
    page.row("Size in bytes ", QString::number(sizeInBytes(data)));
    // A variable whose two descriptions are one text shows it once.
    if (!data.description.isEmpty() && data.description != object.data.description)
        page.row("Description", data.description);
    page.endBlock();
}
