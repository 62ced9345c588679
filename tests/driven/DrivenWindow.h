#pragma once

#include "controller/AlphaTabController.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QSet>

class QAction;
class QMainWindow;
class WebEngineHost;

/// Does what the lines that it is given say, and says what there is, in lines of JSON.
///
/// A line is a list: the number of the question, a word, and what belongs to the word. Each has one answer, with its
/// number under "id", when it has been done; what the page answers comes later. Once the items of the menus were asked
/// for, each of them says its first key when it is chosen.
class DrivenWindow final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DrivenWindow)

public:
    using Say = std::function<void(const QJsonObject &)>;

    DrivenWindow(AlphaTabController &controller, QMainWindow &window, Say say);

    /// The host that the controller was given.
    void setHost(WebEngineHost *host);
    void take(const QByteArray &line);

private:
    bool act(const QString &word, const QJsonArray &words);
    bool set(const QString &name, const QJsonValue &value);
    QJsonObject state() const;
    QJsonArray items();
    void watch(QAction *item);
    void ask(int id, const QString &script);

    AlphaTabController &m_controller;
    QMainWindow &m_window;
    const Say m_say;
    /// How many scores the page has shown.
    int m_scores = 0;
    /// How often it has told a position of the last of them.
    int m_positions = 0;
    /// The items that say when they are chosen.
    QSet<const QAction *> m_watched;
    WebEngineHost *m_host = nullptr;
};
