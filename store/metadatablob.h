#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariant>

/// The stored form of metadata maps: a count, then key and value in key order, as a data stream
/// of version 17.
namespace MetaDataBlob {

[[nodiscard]] QByteArray toBlob(const QMap<QString, QString> &map);
/// Anything that is no blob, or a damaged one, reads as empty.
[[nodiscard]] QMap<QString, QString> fromValue(const QVariant &value);

} // namespace MetaDataBlob
