#include "tests/driven/DrivenWindow.h"

#include "design/Theme.h"
#include "engine_host/EnginePage.h"
#include "engine_host/WebEngineHost.h"
#include "pdf/conversion/PDFDocument.h"

#include <QAction>
#include <QApplication>
#include <QJsonDocument>
#include <QMainWindow>
#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace {

QString healthOf(const AlphaTabController &controller)
{
    switch (controller.pageHealth.value()) {
    case PageHealth::Well:
        return u"well"_s;
    case PageHealth::NotAnswering:
        return u"not answering"_s;
    case PageHealth::Ended:
        return u"ended"_s;
    }
    return {};
}

/// Which widget has the keys, such that no two of them say the same.
QString nameOfFocus()
{
    const QWidget *widget = QApplication::focusWidget();
    if (!widget)
        return {};
    const QPoint place = widget->mapTo(widget->window(), QPoint());
    return u"%1 %2 at %3,%4 of %5"_s.arg(QString::fromLatin1(widget->metaObject()->className()))
        .arg(widget->accessibleName())
        .arg(place.x())
        .arg(place.y())
        .arg(QString::fromLatin1(widget->window()->metaObject()->className()));
}

} // namespace

DrivenWindow::DrivenWindow(AlphaTabController &controller, QMainWindow &window, Say say)
    : m_controller(controller)
    , m_window(window)
    , m_say(std::move(say))
{
    controller.title.onChange(this, [this](const QString &) {
        ++m_scores;
        m_positions = 0;
    });
    controller.endTime.onChange(this, [this](double) { ++m_positions; });
}

void DrivenWindow::setHost(WebEngineHost *host) { m_host = host; }

void DrivenWindow::take(const QByteArray &line)
{
    const QJsonArray words = QJsonDocument::fromJson(line).array();
    const int id = words.at(0).toInt();
    const QString word = words.at(1).toString();
    if (word == "ask"_L1) {
        ask(id, words.at(2).toString());
        return;
    }
    QJsonObject answer{ { u"id"_s, id } };
    if (word == "state"_L1)
        answer.insert(u"state"_s, state());
    else if (word == "items"_L1)
        answer.insert(u"items"_s, items());
    else if (!act(word, words))
        answer.insert(u"unknown"_s, word);
    m_say(answer);
}

bool DrivenWindow::act(const QString &word, const QJsonArray &words)
{
    const QJsonValue first = words.at(2);
    const QJsonValue second = words.at(3);
    if (word == "open"_L1)
        m_controller.load(QUrl::fromLocalFile(first.toString()));
    else if (word == "js"_L1)
        m_controller.js(first.toString());
    else if (word == "set"_L1)
        return set(first.toString(), second);
    else if (word == "seek"_L1)
        m_controller.seek(first.toDouble());
    else if (word == "mute"_L1)
        m_controller.toggleMute(first.toInt());
    else if (word == "solo"_L1)
        m_controller.toggleSolo(first.toInt());
    else if (word == "visible"_L1)
        m_controller.toggleVisible(first.toInt());
    else if (word == "volume"_L1)
        m_controller.setTrackVolume(first.toInt(), second.toDouble());
    else if (word == "resize"_L1)
        m_window.resize(first.toInt(), second.toInt());
    else if (word == "convert"_L1)
        m_controller.convertOpenPDF();
    else if (word == "stopReading"_L1)
        m_controller.stopReading();
    else if (word == "startAgain"_L1)
        m_controller.startPageAgain();
    else if (word == "dark"_L1)
        QApplication::setPalette(first.toBool() ? Theme::darkPalette() : QPalette());
    else if (word == "dismiss"_L1)
        m_controller.conversionError = std::nullopt;
    else if (word == "quit"_L1)
        QApplication::quit();
    else
        return false;
    return true;
}

bool DrivenWindow::set(const QString &name, const QJsonValue &value)
{
    if (name == "looping"_L1)
        m_controller.looping = value.toBool();
    else if (name == "metronome"_L1)
        m_controller.metronome = value.toBool();
    else if (name == "countIn"_L1)
        m_controller.countIn = value.toBool();
    else if (name == "horizontalLayout"_L1)
        m_controller.horizontalLayout = value.toBool();
    else if (name == "preferSynth"_L1)
        m_controller.preferSynth = value.toBool();
    else if (name == "tempoPercent"_L1)
        m_controller.tempoPercent = value.toDouble();
    else if (name == "masterVolume"_L1)
        m_controller.masterVolume = value.toDouble();
    else if (name == "zoom"_L1)
        m_controller.zoom = value.toDouble();
    else
        return false;
    return true;
}

QJsonObject DrivenWindow::state() const
{
    const auto &c = m_controller;
    QJsonArray tracks;
    for (const TrackInfo &track : c.tracks.value()) {
        tracks << QJsonObject{ { u"id"_s, track.id }, { u"name"_s, track.name }, { u"mute"_s, track.mute },
            { u"solo"_s, track.solo }, { u"visible"_s, track.visible }, { u"volume"_s, track.volume } };
    }
    return { { u"bridgeReady"_s, c.bridgeReady.value() }, { u"playerReady"_s, c.playerReady.value() },
        { u"playing"_s, c.isPlaying.value() }, { u"hasScore"_s, c.hasScore.value() }, { u"title"_s, c.title.value() },
        { u"time"_s, c.currentTime.value() }, { u"end"_s, c.endTime.value() }, { u"tracks"_s, tracks },
        { u"health"_s, healthOf(c) }, { u"converting"_s, c.converting.value() },
        { u"pdf"_s, c.pdfURL.value() ? c.pdfURL.value()->toLocalFile() : QString() },
        { u"pages"_s, c.pdfDocument.value() ? c.pdfDocument.value()->pageCount() : 0 }, { u"focus"_s, nameOfFocus() },
        { u"error"_s, c.conversionError.value().value_or(QString()) }, { u"windowTitle"_s, m_window.windowTitle() },
        { u"scores"_s, m_scores }, { u"positions"_s, m_positions },
        { u"page"_s, m_host && m_host->page() ? m_host->page()->renderProcessPid() : 0 } };
}

QJsonArray DrivenWindow::items()
{
    QJsonArray items;
    for (QAction *item : m_window.findChildren<QAction *>()) {
        const QList<QKeySequence> keys = item->shortcuts();
        if (keys.isEmpty())
            continue;
        watch(item);
        QJsonArray names;
        for (const QKeySequence &key : keys)
            names << key.toString(QKeySequence::PortableText);
        items << QJsonObject{ { u"title"_s, item->text() }, { u"keys"_s, names }, { u"enabled"_s, item->isEnabled() } };
    }
    return items;
}

void DrivenWindow::watch(QAction *item)
{
    if (m_watched.contains(item))
        return;
    m_watched.insert(item);
    connect(item, &QAction::triggered, this,
        [this, item] { m_say({ { u"chosen"_s, item->shortcut().toString(QKeySequence::PortableText) } }); });
}

void DrivenWindow::ask(int id, const QString &script)
{
    if (!m_host || !m_host->page()) {
        m_say({ { u"id"_s, id }, { u"value"_s, QJsonValue::Null } });
        return;
    }
    m_host->page()->runJavaScript(script, [say = m_say, id](const QVariant &value) {
        say({ { u"id"_s, id }, { u"value"_s, QJsonValue::fromVariant(value) } });
    });
}
