#pragma once

#include <QTextBrowser>

/// The user's guide, which comes with the program.
class GuideWindow final : public QTextBrowser {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(GuideWindow)

public:
    explicit GuideWindow(QWidget *parent);
    ~GuideWindow() override;

protected:
    QVariant loadResource(int type, const QUrl &name) override;
    void doSetSource(const QUrl &url, QTextDocument::ResourceType type) override;
};
