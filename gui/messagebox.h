#pragma once

#include <QMessageBox>

#include <functional>

/// A message box that is never narrow, and breaks no path over two lines.
class MessageBox : public QMessageBox
{
    Q_OBJECT

public:
    static constexpr int leastWidth = 420; ///< logical pixels

    using QMessageBox::QMessageBox;

    /// Both as plain or rich text. Paths are looked for in plain text.
    void setTexts(const QString &text, const QString &informativeText);

    /// The text with line feeds in place of blanks, so that no line gets wider than `width` as
    /// `widthOf` tells it; but a word, and a path with all its blanks, stays whole. As it is if
    /// there is no path in it.
    [[nodiscard]] static QString wrapped(const QString &text, int width,
                                         const std::function<int(const QString &)> &widthOf);

protected:
    bool event(QEvent *event) override;

private:
    void setWhole(const char *label, const QString &text);
    void fitWidth();
};
