#include "fuzz/fuzzsupport.h"

#include "store/databasetextconverter.h"
#include "store/projecttext.h"

namespace {

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What a store makes of a text; empty if it refuses it.
QByteArray rewritten(const QString &path)
{
    ObjectDataBase store;
    if (!store.openDataBase(path) || !store.lastErrorText().isEmpty())
        return {};
    const QString copy = path + QStringLiteral(".copy.vxmt");
    return DatabaseTextConverter(store, copy).convertSqlToText() ? content(copy) : QByteArray();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzSupport::prepare();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    ProjectText::Reader reader(text);
    const bool readable = reader.read({});
    if (readable != reader.error().isEmpty())
        __builtin_trap();
    // A new store takes a hundred times as long as reading, so only what is a project gets one.
    if (!readable || reader.summary().lines.isEmpty())
        return 0;
    const QString path = FuzzSupport::file(data, size, "vxmt");
    const QByteArray first = rewritten(path);
    if (!first.isEmpty() && rewritten(path + QStringLiteral(".copy.vxmt")) != first)
        __builtin_trap();
    return 0;
}
