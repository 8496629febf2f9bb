#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// What a new gen_define.h takes over from the former one: the lines between the marker comments,
/// which belong to the user, and the number of generations so far.
struct UserSection
{
    static constexpr const char *startMarker = "/* user-specific section: start */";
    static constexpr const char *endMarker = "/* user-specific section: end */";
    static constexpr const char *notice =
        "/* do not modify comments starting with 'user-specific section:' */";

    /// The user's lines byte for byte, each with a line feed behind it; empty if there are none.
    QByteArray lines;
    quint64 generationCount = 0; ///< 0 if the file tells none

    /// Takes a header apart. Lines may end in LF, CR LF or, in a file without LF, CR. Without an
    /// end marker everything to the end of the file is the user's; without a start marker it is
    /// what stands between the notice and the end marker.
    [[nodiscard]] static UserSection parse(const QByteArray &header);
    /// The bytes of the former header; none if it does not exist. No value, and `errorText` filled,
    /// if there is a file that can't be read.
    [[nodiscard]] static std::optional<QByteArray> read(const QString &path, QString &errorText);
};
