#include "nastytexts.h"

#include "store/initext.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// The text syntax has to be the one of QSettings, in both directions.
class TestIniText : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_path = m_folder.filePath(u"t%1.ini"_s.arg(++m_count)); }

    void readsWhatSettingsWrite_data() { NastyTexts::addRows(); }
    void readsWhatSettingsWrite()
    {
        QFETCH(QString, text);
        {
            QSettings settings(m_path, QSettings::IniFormat);
            settings.setValue(u"Group 1/key"_s, text);
        }
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray content = file.readAll();
        IniText::Scanner scanner(content);
        QCOMPARE(scanner.next(), IniText::Scanner::Section);
        QString name;
        QVERIFY(IniText::decodeKey(scanner.name(), name));
        QCOMPARE(name, u"Group 1"_s);
        QCOMPARE(scanner.next(), IniText::Scanner::Entry);
        QString read;
        QVERIFY(IniText::decodeValue(scanner.value(), read));
        QCOMPARE(read, text);
        QCOMPARE(scanner.next(), IniText::Scanner::End);
    }

    void settingsReadWhatIsWritten_data() { NastyTexts::addRows(); }
    void settingsReadWhatIsWritten()
    {
        QFETCH(QString, text);
        // Keys can hold anything but separators, which QSettings merges.
        QString key = text.left(200).remove(u'/').remove(u'\\');
        if (key.isEmpty())
            key = u"key"_s;
        QByteArray content =
            "[" + IniText::encodeKey(u"Group 1") + "]\n" + IniText::encodeKey(key) + '=';
        IniText::encodeValue(text, content);
        content += "\nlast=1\n";
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();

        QSettings settings(m_path, QSettings::IniFormat);
        settings.beginGroup(u"Group 1"_s);
        const QVariant value = settings.value(key);
        QCOMPARE(value.typeId(), int(QMetaType::QString));
        QCOMPARE(value.toString(), text);
        QCOMPARE(settings.value(u"last"_s).toString(), u"1"_s);
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

    void handWritten()
    {
        const std::tuple<QByteArray, QString> rows[] = {
            {QByteArray("  key  =  a b \t\n"), u"a b"_s},
            {QByteArray("\xEF\xBB\xBFkey=a\n"), u"a"_s},
            {QByteArray("; note\r\n\r\nkey=a\r\n"), u"a"_s},
            {QByteArray("; note\rkey=a\r"), u"a"_s},
            {QByteArray("key=a"), u"a"_s},
            {QByteArray("key=a ; note \"x\n"), u"a"_s},
            {QByteArray("key=const, ro,rw\n"), u"const, ro,rw"_s},
            {QByteArray("key=\" a\"b\n"), u" ab"_s},
            {QByteArray("key=\"a\nb\"\n"), u"a\nb"_s},
            {QByteArray("key=a\\\r\nb\n"), u"ab"_s},
            {QByteArray("key=\\101\\0\n"), u"A"_s + QChar(0)},
            {QByteArray("key=\\"), u"\\"_s},
            {QByteArray("key=\n"), QString()}};
        for (const auto &[content, value] : rows) {
            IniText::Scanner scanner(content);
            QCOMPARE(scanner.next(), IniText::Scanner::Entry);
            QCOMPARE(scanner.name().toByteArray(), QByteArray("key"));
            QString read;
            QVERIFY(IniText::decodeValue(scanner.value(), read));
            QCOMPARE(read, value);
            QCOMPARE(scanner.next(), IniText::Scanner::End);
        }
    }

    void malformed()
    {
        const std::tuple<QByteArray, int> rows[] = {{QByteArray("[A]\nb=1\nc\n"), 3},
                                                    {QByteArray("[A]\r\n\r\n[B\r\n"), 3},
                                                    {QByteArray("[A]\nb=\"x\\\"\nc=1\n"), 2},
                                                    {QByteArray("a=\"x\n\n\"\nb\n"), 4}};
        for (const auto &[content, line] : rows) {
            IniText::Scanner scanner(content);
            IniText::Scanner::Token token;
            do {
                token = scanner.next();
            } while (token == IniText::Scanner::Section || token == IniText::Scanner::Entry);
            QCOMPARE(token, IniText::Scanner::Malformed);
            QCOMPARE(scanner.line(), line);
            QVERIFY(!scanner.error().isEmpty());
        }
    }

private:
    QTemporaryDir m_folder;
    QString m_path;
    int m_count = 0;
};

QTEST_GUILESS_MAIN(TestIniText)
#include "tst_initext.moc"
