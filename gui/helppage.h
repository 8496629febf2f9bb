#pragma once

#include <QPalette>
#include <QString>

class QTextDocument;

/// A page of the manual: Markdown from a resource, and what makes it a pleasant read.
class HelpPage
{
public:
    /// Reads the page; without a title if there is none of that name.
    explicit HelpPage(const QString &path);

    [[nodiscard]] bool exists() const { return !m_title.isEmpty(); }
    /// The text of its first heading.
    [[nodiscard]] QString title() const { return m_title; }
    [[nodiscard]] QString markdown() const { return m_markdown; }
    /// The page has all of the words, which are in lower case.
    [[nodiscard]] bool contains(const QStringList &words) const;

    /// Fills the document, in the colours of the palette. To be done before the document is shown:
    /// laying it out anew for each change takes a minute for a long page.
    void show(QTextDocument &document, const QPalette &palette) const;
    /// The name by which links reach a heading: lower case, hyphens for blanks, no other signs.
    [[nodiscard]] static QString anchorOf(const QString &heading);
    /// Position of the heading in the document; -1 if there is none.
    [[nodiscard]] static int positionOf(const QTextDocument &document, const QString &anchor);

private:
    QString m_markdown;
    QString m_title;
};
