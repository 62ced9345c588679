#include "engine_host/serving/WebSchemeHandler.h"
#include "engine_host/serving/WebSchemeResolution.h"
#include "tests/support/NotRoot.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace WebScheme;

class TestWebScheme final : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_root;

    void put(const QString &name, const QByteArray &bytes)
    {
        const QString path = m_root + u'/' + name;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    std::optional<Response> response(const QString &address) const
    {
        const Answer answer = resolve(QUrl(address), m_root);
        return std::holds_alternative<Response>(answer) ? std::optional(std::get<Response>(answer)) : std::nullopt;
    }

    std::optional<Failure> failure(const QUrl &url) const
    {
        const Answer answer = resolve(url, m_root);
        return std::holds_alternative<Failure>(answer) ? std::optional(std::get<Failure>(answer)) : std::nullopt;
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_root = QDir(m_folder.path()).canonicalPath() + u"/web"_s;
        put(u"index.html"_s, "<!doctype html>");
        put(u"js/main.js"_s, "main");
        put(u"empty.css"_s, {});
        put(u"font/a b.woff2"_s, "font");
        put(u"../secret.txt"_s, "secret");
        put(u"../web-sibling/x.txt"_s, "sibling");
    }

    void theWholeAnswer()
    {
        const auto answer = response(u"qv-app://app/js/main.js?v=3#top"_s);
        QVERIFY(answer);
        QCOMPARE(answer->url, QUrl(u"qv-app://app/js/main.js?v=3#top"_s));
        QCOMPARE(answer->status, 200);
        QCOMPARE(answer->httpVersion, u"HTTP/1.1"_s);
        QCOMPARE(answer->body, QByteArray("main"));
        const QList<QPair<QByteArray, QByteArray>> headers{ { "Content-Type", "text/javascript; charset=utf-8" },
            { "Content-Length", "4" }, { "Cache-Control", "no-cache" } };
        QCOMPARE(answer->headers, headers);
    }

    void theIndexPage_data()
    {
        QTest::addColumn<QString>("address");
        for (const char *address :
            { "qv-app://app/index.html", "qv-app://app/", "qv-app://app", "qv-app://other/index.html" })
            QTest::newRow(address) << QString::fromLatin1(address);
    }

    void theIndexPage()
    {
        QFETCH(QString, address);
        const auto answer = response(address);
        QVERIFY(answer);
        QCOMPARE(answer->body, QByteArray("<!doctype html>"));
        QCOMPARE(answer->header("Content-Type"), QByteArray("text/html; charset=utf-8"));
    }

    void anEmptyFileHasLengthZero()
    {
        const auto answer = response(u"qv-app://app/empty.css"_s);
        QVERIFY(answer);
        QCOMPARE(answer->header("Content-Length"), QByteArray("0"));
        QCOMPARE(answer->header("Content-Type"), QByteArray("text/css; charset=utf-8"));
    }

    void pathsAreDecoded()
    {
        QVERIFY(response(u"qv-app://app/font/a%20b.woff2"_s));
        QVERIFY(response(u"qv-app://app/js/../js/./main.js"_s));
    }

    void nothingOutsideIsServed_data()
    {
        QTest::addColumn<QString>("address");
        for (const char *address : { "qv-app://app/../secret.txt", "qv-app://app/%2e%2e/secret.txt",
                 "qv-app://app/js/../../secret.txt", "qv-app://app/..%2fsecret.txt", "qv-app://app/missing.js",
                 "qv-app://app/js", "qv-app://app/js/", "qv-app://app/main%00.js" })
            QTest::newRow(address) << QString::fromLatin1(address);
    }

    void nothingOutsideIsServed()
    {
        QFETCH(QString, address);
        QCOMPARE(failure(QUrl(address)), Failure::FileDoesNotExist);
    }

    void aSiblingWhoseNameBeginsAlikePasses()
    {
        const auto answer = response(u"qv-app://app/../web-sibling/x.txt"_s);
        QVERIFY(answer);
        QCOMPARE(answer->body, QByteArray("sibling"));
    }

    void aRequestWithoutAddress() { QCOMPARE(failure(QUrl()), Failure::BadUrl); }

    void anUnreadableFile()
    {
        put(u"locked.js"_s, "x");
        QFile::setPermissions(m_root + u"/locked.js"_s, {});
        const NotRoot user(m_folder.path());
        QVERIFY(!QFile(m_root + u"/locked.js"_s).open(QIODevice::ReadOnly));
        QCOMPARE(failure(QUrl(u"qv-app://app/locked.js"_s)), Failure::FileDoesNotExist);
    }

    void contentTypes_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("type");
        const auto row = [](const char *name, const char *type) {
            QTest::newRow(name) << QString::fromLatin1(name) << QByteArray(type);
        };
        row("a.html", "text/html; charset=utf-8");
        row("a.js", "text/javascript; charset=utf-8");
        row("a.css", "text/css; charset=utf-8");
        row("a.svg", "image/svg+xml");
        row("a.woff2", "font/woff2");
        row("A.WOFF2", "font/woff2");
        row("a.woff", "font/woff");
        row("a.otf", "font/otf");
        row("a.ttf", "font/ttf");
        row("a.eot", "application/vnd.ms-fontobject");
        row("a.sf2", "application/octet-stream");
        row("a.SF3", "application/octet-stream");
        row("a.json", "application/json");
        row("a.htm", "text/html");
        row("a.png", "image/png");
        row("a.b.css", "text/css; charset=utf-8");
        row("a.nobody-knows", "application/octet-stream");
        row("noextension", "application/octet-stream");
    }

    void contentTypes()
    {
        QFETCH(QString, name);
        QTEST(mimeType(u"/x/"_s + name), "type");
    }

    /// Found by the fuzzer: Qt 6.4 crashes over it where the system has types of files.
    void aNameWithNullsHasAType()
    {
        const QString name = u".$sr"_s + QString(57, QChar::Null) + u",V"_s;
        QCOMPARE(mimeType(name), "application/octet-stream"_ba);
    }

    void theRootIsStandardized()
    {
        const WebSchemeHandler handler(m_root + u"/js/../."_s);
        QCOMPARE(handler.root(), m_root);
    }
};

QTEST_GUILESS_MAIN(TestWebScheme)
#include "test_web_scheme.moc"
