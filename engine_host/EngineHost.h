#pragma once

#include "engine_host/PrintTarget.h"

#include <QString>

#include <functional>
#include <optional>

class PageReports;
class QImage;
class QUrl;
class QWidget;

/// The embedded web view as its owner sees it: evaluate, load, snapshot.
///
/// The real one is WebEngineHost; tests put a recording one in its place and need no Chromium.
class EngineHost {
public:
    /// Called once per evaluation: with nothing on success, with the error's text otherwise.
    using Completion = std::function<void(const std::optional<QString> &error)>;

    virtual ~EngineHost() = default;

    /// Evaluates `script` in the page. Never blocks; the script's value is not reported.
    virtual void evaluate(const QString &script, Completion completion) = 0;
    /// Starts loading `url` and returns at once.
    virtual void load(const QUrl &url) = 0;
    /// Ends the process of the page, whatever it is doing; nothing happens where it has none. That it has ended is made
    /// known like any other end of it.
    virtual void endPage() = 0;
    /// Takes a picture of the page's visible content; a null image when there is none.
    virtual void snapshot(std::function<void(const QImage &)> arrived) = 0;
    /// What the page reports beside its messages, and the keys that it is handed; lives as long as this host.
    virtual PageReports &reports() = 0;
    /// Prints what the page shows of the score. `printed` is called once, when that is done or has failed.
    virtual void print(const PrintTarget &target, std::function<void(const PrintResult &)> printed) = 0;
    /// The one web view, owned by this host; null where there is none (tests).
    virtual QWidget *view() const = 0;
};
