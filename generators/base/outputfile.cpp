#include "generators/base/outputfile.h"

#include "canopen/safefile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OutputFile", text);
}

/// A file that remembers whether less was taken than it was given. A disk that becomes full in the
/// middle of a large block gives no error of its own, only a smaller count, which text streams pass
/// over.
template <typename File>
class CountingFile : public File
{
public:
    CountingFile(const QString &path, bool &tookLess) : File(path), m_tookLess(tookLess) {}

protected:
    qint64 writeData(const char *data, qint64 size) override
    {
        const qint64 taken = File::writeData(data, size);
        m_tookLess = m_tookLess || taken != size;
        return taken;
    }

private:
    bool &m_tookLess;
};

} // namespace

OutputFile::OutputFile(const QString &path) : m_path(path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        m_file = std::make_unique<CountingFile<QFile>>(path, m_tookLess);
        return;
    }
    auto file = std::make_unique<CountingFile<QSaveFile>>(path, m_tookLess);
    file->setDirectWriteFallback(true);
    m_file = std::move(file);
}

OutputFile::~OutputFile() = default;

bool OutputFile::open()
{
    if (m_file->open(QIODevice::WriteOnly | QIODevice::Text))
        return true;
    m_errorText = tr("The file %1 can't be opened for writing: %2.")
                      .arg(QDir::toNativeSeparators(m_path), SafeFile::reason(*m_file));
    return false;
}

QIODevice &OutputFile::device() const
{
    return *m_file;
}

bool OutputFile::commit()
{
    bool written = m_file->flush() && m_file->error() == QFileDevice::NoError;
    QString reason = written ? QString() : SafeFile::reason(*m_file);
    if (written && m_tookLess) {
        written = false;
        reason = tr("the disk is full");
    }
    if (auto *file = qobject_cast<QSaveFile *>(m_file.get())) {
        if (!written)
            file->cancelWriting();
        // Closes in every case; after a cancel it removes what was written.
        if (!file->commit() && written) {
            written = false;
            reason = SafeFile::reason(*file);
        }
    } else {
        m_file->close();
        if (written && m_file->error() != QFileDevice::NoError) {
            written = false;
            reason = SafeFile::reason(*m_file);
        }
    }
    if (!written)
        m_errorText = tr("The file %1 could not be written completely: %2.")
                          .arg(QDir::toNativeSeparators(m_path), reason);
    return written;
}

bool OutputFile::write(const QString &path, const QString &text, QString *errorText)
{
    OutputFile file(path);
    bool done = file.open();
    if (done) {
        file.device().write(text.toUtf8());
        done = file.commit();
    }
    if (!done && errorText)
        *errorText = file.errorText();
    return done;
}

bool OutputFile::isWritable(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return true;
    constexpr auto writeBits = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    return !info.isDir() && info.isWritable() && (info.permissions() & writeBits);
}
