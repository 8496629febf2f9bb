#pragma once

#include <QList>
#include <QString>

#include <functional>

class ObjectDataBase;

/// The variables of the application that a project names, in the order in which they are
/// declared, each once.
struct ExtDeclVariables
{
    /// A comment line, or a variable with a comment behind it. A variable that is named element
    /// by element is one array.
    struct Row
    {
        QString comment = {};
        QString type = {}; ///< C type; empty for a row that is only a comment
        QString name = {}; ///< C identifier
        bool isArray = false;
        quint32 elements = 0;   ///< of an array; 0: as many as the application likes
        bool isHeading = false; ///< a comment above the rows of a line
    };

    QList<Row> rows;

    /// `hasLines`: each line has a heading. `stop` is asked between objects.
    [[nodiscard]] static ExtDeclVariables collect(ObjectDataBase &store, const QList<quint8> &lines,
                                                  bool hasLines, const std::function<bool()> &stop);
    /// The text for a header ("extern"), or for a source file that defines the variables.
    [[nodiscard]] QString declarations(bool isExtern) const;
};
