#pragma once

#include <QByteArray>

class QXmlStreamReader;

/// Keeps documents away from the XML reader on which it would work without end.
namespace XmlGuard {

/// The reader compares every attribute of an element with every other one.
constexpr int mostAttributes = 64;
/// Bytes of a tag, and of the text between two: a name or value of a device is far shorter, and
/// takes ten times as much until it is in the project.
constexpr qsizetype longestPart = 1024 * 1024;

/// The line of the first element with more attributes or a longer part, or 0.
[[nodiscard]] int firstOverloadedTag(const QByteArray &document);
/// Gives a document to the reader; also one in UTF-16 or UTF-32.
void feed(QXmlStreamReader &xml, const QByteArray &document);

} // namespace XmlGuard
