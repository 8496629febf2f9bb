#include "store/metadatablob.h"

#include <QDataStream>
#include <QIODevice>

namespace MetaDataBlob {

namespace {
constexpr int streamVersion = 17;
}

QByteArray toBlob(const QMap<QString, QString> &map)
{
    QByteArray blob;
    QDataStream stream(&blob, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << quint32(map.size());
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        stream << it.key() << it.value();
    return blob;
}

QMap<QString, QString> fromValue(const QVariant &value)
{
    QMap<QString, QString> map;
    if (value.typeId() != QMetaType::QByteArray)
        return map;
    QDataStream stream(value.toByteArray());
    stream.setVersion(streamVersion);
    quint32 count = 0;
    stream >> count;
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        QString key;
        QString text;
        stream >> key >> text;
        if (stream.status() == QDataStream::Ok)
            map.insert(key, text);
    }
    return stream.status() == QDataStream::Ok ? map : QMap<QString, QString>();
}

} // namespace MetaDataBlob
