#include "benchmarks/syntheticeds.h"

#include <QFile>

#include <algorithm>
#include <array>

namespace {

constexpr int firstIndex = 0x2000;
constexpr int entriesOfRecord = 9;

struct Kind
{
    const char *dataType;
    const char *access;
    const char *mapping;
    const char *value;
    const char *limits;
};

constexpr std::array kinds = {
    Kind{"0x0005", "rw", "1", "0x20", "LowLimit=0\r\nHighLimit=200\r\n"},
    Kind{"0x0006", "ro", "1", "1000", ""},
    Kind{"0x0007", "const", "0", "0x00010203", ""},
    Kind{"0x0003", "rww", "1", "-5", "LowLimit=-100\r\nHighLimit=100\r\n"},
    Kind{"0x0007", "rw", "0", "$NODEID+0x600", ""},
    Kind{"0x0009", "ro", "0", "some text", ""},
    Kind{"0x0008", "rwr", "1", "1.5", ""},
    Kind{"0x001B", "rw", "0", "", ""},
    Kind{"0x0001", "wo", "1", "1", ""},
};

QByteArray hex(int number, int width)
{
    return QByteArray::number(number, 16).toUpper().rightJustified(width, '0');
}

void appendEntry(QByteArray &text, int number)
{
    const Kind &kind = kinds[static_cast<std::size_t>(number) % kinds.size()];
    text += QByteArray("DataType=") + kind.dataType + "\r\nAccessType=" + kind.access +
            "\r\nPDOMapping=" + kind.mapping + "\r\n";
    if (*kind.value != 0)
        text += QByteArray("DefaultValue=") + kind.value + "\r\n";
    text += kind.limits;
    if (number % 4 == 0)
        text += ";;Description of a value that repeats in part, number " +
                QByteArray::number(number % 100) + "\r\n";
}

void appendRecord(QByteArray &text, int index)
{
    text += "ObjectType=0x9\r\nSubNumber=" + QByteArray::number(entriesOfRecord) + "\r\n";
    for (int sub = 0; sub < entriesOfRecord; ++sub) {
        text += "\r\n[" + hex(index, 4) + "sub" + QByteArray::number(sub) +
                "]\r\nParameterName=Entry " + QByteArray::number(sub) + "\r\nObjectType=0x7\r\n";
        if (sub == 0)
            text += "DataType=0x0005\r\nAccessType=ro\r\nPDOMapping=0\r\nDefaultValue=8\r\n";
        else
            appendEntry(text, index + sub);
    }
}

void appendList(QByteArray &text, const char *name, int first, int last)
{
    text += QByteArray("[") + name +
            "]\r\nSupportedObjects=" + QByteArray::number(std::max(0, last - first)) + "\r\n";
    for (int index = first; index < last; ++index)
        text += QByteArray::number(index - first + 1) + "=0x" + hex(index, 4) + "\r\n";
    text += "\r\n";
}

} // namespace

QByteArray SyntheticEds::text(int objects)
{
    QByteArray text = "[FileInfo]\r\nFileName=synthetic.eds\r\nFileVersion=1\r\n\r\n"
                      "[DeviceInfo]\r\nVendorName=Nobody\r\nProductName=Synthetic\r\n\r\n";
    const int last = firstIndex + std::min(objects, maximumObjects);
    appendList(text, "ManufacturerObjects", firstIndex, std::min(last, 0x6000));
    appendList(text, "OptionalObjects", 0x6000, last);
    for (int index = firstIndex; index < last; ++index) {
        text +=
            "[" + hex(index, 4) + "]\r\nParameterName=Object " + QByteArray::number(index) + "\r\n";
        if (index % 2 == 0) {
            text += "ObjectType=0x7\r\n";
            appendEntry(text, index);
        } else {
            appendRecord(text, index);
        }
        text += "\r\n";
    }
    return text;
}

bool SyntheticEds::write(const QString &path, int objects)
{
    QFile file(path);
    const QByteArray content = text(objects);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}
