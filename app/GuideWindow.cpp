#include "app/GuideWindow.h"

#include <QImage>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>

using namespace Qt::StringLiterals;

namespace {

constexpr int widestPicture = 760;

/// What a link to a heading says after its "#": lower case, words joined by hyphens, nothing else.
QString anchorOf(const QString &heading)
{
    static const QRegularExpression other(u"[^\\w -]"_s, QRegularExpression::UseUnicodePropertiesOption);
    return heading.toLower().remove(other).replace(u' ', u'-');
}

} // namespace

GuideWindow::GuideWindow(QWidget *parent)
    : QTextBrowser(parent)
{
    setWindowFlag(Qt::Window);
    setWindowTitle(tr("Guide"));
    setAccessibleName(tr("Guide"));
    setAttribute(Qt::WA_DeleteOnClose);
    setOpenExternalLinks(true);
    document()->setDocumentMargin(24);
    resize(860, 720);
    setSource(QUrl(u"qrc:/guide/index.md"_s));
}

GuideWindow::~GuideWindow() = default;

QVariant GuideWindow::loadResource(int type, const QUrl &name)
{
    QVariant resource = QTextBrowser::loadResource(type, name);
    if (type != QTextDocument::ImageResource)
        return resource;
    const QImage picture = QImage::fromData(resource.toByteArray());
    // Qt shows pictures at their own size only.
    return picture.width() > widestPicture ? picture.scaledToWidth(widestPicture, Qt::SmoothTransformation) : picture;
}

void GuideWindow::doSetSource(const QUrl &url, QTextDocument::ResourceType type)
{
    QTextBrowser::doSetSource(url, type);
    // Qt's Markdown has no anchors for headings.
    for (QTextBlock block = document()->begin(); url.hasFragment() && block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0 && anchorOf(block.text()) == url.fragment()) {
            setTextCursor(QTextCursor(document()->lastBlock()));
            setTextCursor(QTextCursor(block));
            return;
        }
    }
}
