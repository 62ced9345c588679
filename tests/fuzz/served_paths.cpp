// Addresses that the page asks for, and names of files.
#include "controller/FileDialogs.h"
#include "engine_host/serving/WebSchemeResolution.h"
#include "tests/fuzz/Expect.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

void put(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    expect(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "the file is written");
}

/// A folder to serve with a file in it, and one beside it that nobody may see.
QString servedFolder()
{
    static const QTemporaryDir folder;
    const QString root = folder.filePath(u"web"_s);
    if (QDir().mkpath(root + u"/src"_s)) {
        put(root + u"/index.html"_s, "served");
        put(root + u"/src/a b.js"_s, "served");
        put(folder.filePath(u"secret"_s), "secret");
    }
    return root;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QString root = servedFolder();
    const QByteArray bytes = bytesOf(data, size);
    for (const QUrl &url : { QUrl::fromEncoded(bytes), QUrl(u"qv-app://app/"_s + QString::fromUtf8(bytes)) }) {
        const WebScheme::Answer answer = WebScheme::resolve(url, root);
        if (const auto *response = std::get_if<WebScheme::Response>(&answer)) {
            expect(response->body == "served", "nothing outside of the folder is served");
            expect(!response->header("Content-Type").isEmpty(), "an answer has a type");
        }
    }
    const QString name = QString::fromUtf8(bytes);
    expect(!WebScheme::mimeType(name).isEmpty(), "every file has a type");
    const QString proposed = FileDialogs::fileNameFor(name + u".gp"_s);
    expect(proposed.endsWith(u".gp"_s) && !proposed.contains(u'/') && proposed.toUtf8().size() <= 255,
        "the proposed name is one that the file system takes");
    return 0;
}
