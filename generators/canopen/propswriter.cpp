#include "generators/canopen/propswriter.h"

#include "canopen/safefile.h"
#include "generators/base/outputfile.h"

#include <QDebug>
#include <QSet>

namespace {

constexpr const char *xmlLine = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

constexpr const char *importText =
    "<!-- Auto-imported by MSBuild. Pulls in the generated define -->\n"
    "<!-- symbols (gen_define.props) if present; no error if absent. -->\n"
    "<Project>\n"
    "  <Import Project=\"$(MSBuildThisFileDirectory)gen_define.props\"\n"
    "          Condition=\"Exists('$(MSBuildThisFileDirectory)gen_define.props')\" />\n"
    "</Project>\n";

constexpr const char *symbolsHead =
    "<!-- Auto-generated from gen_define.h - do not edit. -->\n"
    "<!-- C# conditional-compilation symbols that make the #if in the -->\n"
    "<!-- generated wrapper match the compiled stack_wrapper DLL. -->\n"
    "<!-- Imported automatically by Directory.Build.props when present. -->\n"
    "<Project>\n"
    "  <PropertyGroup>\n"
    "    <DefineConstants>$(DefineConstants);";

constexpr const char *symbolsEnd = "</DefineConstants>\n"
                                   "  </PropertyGroup>\n"
                                   "</Project>\n";

bool isWordCharacter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_';
}

/// The macro that a line defines; empty if it defines none.
QByteArray symbolOf(QByteArray line)
{
    line = line.trimmed();
    if (line.startsWith('#'))
        line = line.mid(1).trimmed();
    constexpr QByteArrayView word("define");
    if (!line.startsWith(word))
        return {};
    const QByteArray rest = line.mid(word.size());
    const QByteArray name = rest.trimmed();
    if (rest.isEmpty() || isWordCharacter(rest.front()))
        return {};
    qsizetype end = 0;
    while (end < name.size() && isWordCharacter(name.at(end)))
        ++end;
    return name.first(end);
}

} // namespace

QStringList PropsWriter::definedSymbols(const QByteArray &header)
{
    QByteArray text = header;
    text.replace("\r\n", "\n").replace('\r', '\n');
    QStringList symbols;
    QSet<QByteArray> known;
    const QList<QByteArray> lines = text.split('\n');
    for (const QByteArray &line : lines) {
        const QByteArray symbol = symbolOf(line);
        if (symbol.isEmpty() || symbol.startsWith('_') || known.contains(symbol))
            continue;
        known.insert(symbol);
        symbols.append(QString::fromLatin1(symbol));
    }
    return symbols;
}

bool PropsWriter::write(const QString &definePath, const QString &folder)
{
    const auto path = [&folder](const char *name) {
        return folder + QLatin1Char('/') + QLatin1String(name);
    };
    constexpr qint64 mostBytes = qint64(256) * 1024 * 1024;
    QString fault;
    const auto header = SafeFile::read(definePath, mostBytes, fault);
    if (!header)
        qDebug().noquote() << "gen_define.h not found, writing Directory.Build.props only: "
                           << definePath << fault;

    if (!OutputFile::write(path("Directory.Build.props"),
                           QLatin1String(xmlLine) + QLatin1String(importText))) {
        qDebug().noquote() << "Unable to write Directory.Build.props to " << folder;
        return false;
    }
    if (!header)
        return true;
    const QString text = QLatin1String(xmlLine) + QLatin1String(symbolsHead) +
                         definedSymbols(*header).join(QLatin1Char(';')) + QLatin1String(symbolsEnd);
    if (!OutputFile::write(path("gen_define.props"), text)) {
        qDebug().noquote() << "Unable to write gen_define.props to " << folder;
        return false;
    }
    return true;
}
