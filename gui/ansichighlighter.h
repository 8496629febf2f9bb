#pragma once

#include <QPalette>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>

#include <array>

/// Colours C text: keywords, types, preprocessor, strings, numbers and comments.
///
/// Belongs to its document and the main thread. The colours are those for a light or a dark ground,
/// whichever the palette has.
class AnsiCHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    enum class Token : quint8 { Keyword, Type, Preprocessor, String, Number, Comment };

    explicit AnsiCHighlighter(QTextDocument *document);

    /// Colours that can be read on the palette's ground; does nothing if it is as light or as dark
    /// as before.
    void setPalette(const QPalette &palette);
    [[nodiscard]] QTextCharFormat format(Token token) const;

protected:
    void highlightBlock(const QString &text) override;

private:
    static constexpr int tokenCount = 6;

    void makeFormats();

    std::array<QTextCharFormat, tokenCount> m_formats;
    bool m_dark = false;
};
