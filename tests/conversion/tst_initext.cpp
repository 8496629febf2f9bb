#include "nastytexts.h"

#include "store/initext.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

/// The text syntax has to be the one of QSettings, in both directions.
class TestIniText : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_path = m_folder.filePath(QStringLiteral("t%1.ini").arg(++m_count)); }

    void readsWhatSettingsWrite_data() { NastyTexts::addRows(); }
    void readsWhatSettingsWrite();
    void settingsReadWhatIsWritten_data() { NastyTexts::addRows(); }
    void settingsReadWhatIsWritten();
    void handWritten_data();
    void handWritten();
    void malformed_data();
    void malformed();

private:
    QTemporaryDir m_folder;
    QString m_path;
    int m_count = 0;
};

void TestIniText::readsWhatSettingsWrite()
{
    QFETCH(QString, text);
    {
        QSettings settings(m_path, QSettings::IniFormat);
        settings.setValue(QStringLiteral("Group 1/key"), text);
    }
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    IniText::Scanner scanner(content);
    QCOMPARE(scanner.next(), IniText::Scanner::Section);
    QString name;
    QVERIFY(IniText::decodeKey(scanner.name(), name));
    QCOMPARE(name, QStringLiteral("Group 1"));
    QCOMPARE(scanner.next(), IniText::Scanner::Entry);
    QString read;
    QVERIFY(IniText::decodeValue(scanner.value(), read));
    QCOMPARE(read, text);
    QCOMPARE(scanner.next(), IniText::Scanner::End);
}

void TestIniText::settingsReadWhatIsWritten()
{
    QFETCH(QString, text);
    // Keys can hold anything but separators, which QSettings merges.
    QString key = text.left(200).remove(u'/').remove(u'\\');
    if (key.isEmpty())
        key = QStringLiteral("key");
    QByteArray content =
        "[" + IniText::encodeKey(u"Group 1") + "]\n" + IniText::encodeKey(key) + '=';
    IniText::encodeValue(text, content);
    content += "\nlast=1\n";
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();

    QSettings settings(m_path, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("Group 1"));
    const QVariant value = settings.value(key);
    QCOMPARE(value.typeId(), int(QMetaType::QString));
    QCOMPARE(value.toString(), text);
    QCOMPARE(settings.value(QStringLiteral("last")).toString(), QStringLiteral("1"));
    QCOMPARE(settings.allKeys().size(), 2);
    QCOMPARE(settings.status(), QSettings::NoError);
    settings.endGroup();

    IniText::Scanner scanner(content);
    scanner.next();
    QCOMPARE(scanner.next(), IniText::Scanner::Entry);
    QString readKey;
    QString read;
    QVERIFY(IniText::decodeKey(scanner.name(), readKey));
    QVERIFY(IniText::decodeValue(scanner.value(), read));
    QCOMPARE(readKey, key);
    QCOMPARE(read, text);
}

void TestIniText::handWritten_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("value");
    QTest::newRow("blanks") << QByteArray("  key  =  a b \t\n") << QStringLiteral("a b");
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBFkey=a\n") << QStringLiteral("a");
    QTest::newRow("DOS line ends") << QByteArray("; note\r\n\r\nkey=a\r\n") << QStringLiteral("a");
    QTest::newRow("old Mac line ends") << QByteArray("; note\rkey=a\r") << QStringLiteral("a");
    QTest::newRow("no line end") << QByteArray("key=a") << QStringLiteral("a");
    QTest::newRow("comment behind") << QByteArray("key=a ; note \"x\n") << QStringLiteral("a");
    QTest::newRow("commas") << QByteArray("key=const, ro,rw\n") << QStringLiteral("const, ro,rw");
    QTest::newRow("part in quotes") << QByteArray("key=\" a\"b\n") << QStringLiteral(" ab");
    QTest::newRow("lines in quotes") << QByteArray("key=\"a\nb\"\n") << QStringLiteral("a\nb");
    QTest::newRow("continued") << QByteArray("key=a\\\r\nb\n") << QStringLiteral("ab");
    QTest::newRow("octal") << QByteArray("key=\\101\\0\n") << QStringLiteral("A") + QChar(0);
    QTest::newRow("lonely escape") << QByteArray("key=\\") << QStringLiteral("\\");
    QTest::newRow("empty") << QByteArray("key=\n") << QString();
}

void TestIniText::handWritten()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, value);
    IniText::Scanner scanner(content);
    QCOMPARE(scanner.next(), IniText::Scanner::Entry);
    QCOMPARE(scanner.name().toByteArray(), QByteArray("key"));
    QString read;
    QVERIFY(IniText::decodeValue(scanner.value(), read));
    QCOMPARE(read, value);
    QCOMPARE(scanner.next(), IniText::Scanner::End);
}

void TestIniText::malformed_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("line");
    QTest::newRow("no assignment") << QByteArray("[A]\nb=1\nc\n") << 3;
    QTest::newRow("open group") << QByteArray("[A]\r\n\r\n[B\r\n") << 3;
    QTest::newRow("open quotes") << QByteArray("[A]\nb=\"x\\\"\nc=1\n") << 2;
    QTest::newRow("lines in quotes count") << QByteArray("a=\"x\n\n\"\nb\n") << 4;
}

void TestIniText::malformed()
{
    QFETCH(QByteArray, content);
    QFETCH(int, line);
    IniText::Scanner scanner(content);
    IniText::Scanner::Token token;
    do {
        token = scanner.next();
    } while (token == IniText::Scanner::Section || token == IniText::Scanner::Entry);
    QCOMPARE(token, IniText::Scanner::Malformed);
    QCOMPARE(scanner.line(), line);
    QVERIFY(!scanner.error().isEmpty());
}

QTEST_GUILESS_MAIN(TestIniText)
#include "tst_initext.moc"
