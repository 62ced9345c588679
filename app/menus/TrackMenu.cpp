#include "app/menus/TrackMenu.h"

#include "controller/AlphaTabController.h"

#include <utility>

using namespace Qt::StringLiterals;

TrackMenu::TrackMenu(AlphaTabController &controller, const QString &title, const QString &modifier,
    std::function<bool(const TrackInfo &)> isOn, const std::function<void(int id)> &choose, QWidget *parent)
    : QMenu(title, parent)
    , m_controller(controller)
    , m_isOn(std::move(isOn))
{
    constexpr int numbers = 9;
    for (int i = 0; i < numbers; ++i) {
        QAction *item = addAction(QString(), this, [this, choose, i] {
            if (i < m_controller.tracks.value().size())
                choose(m_controller.tracks.value()[i].id);
        });
        item->setShortcut(QKeySequence(modifier + QString::number(i + 1), QKeySequence::PortableText));
        item->setCheckable(true);
        item->setAutoRepeat(false);
    }
    controller.tracks.observe(this, [this](const auto &) { refresh(); });
    controller.pdfDocument.onChange(this, [this](const auto &) { refresh(); });
}

TrackMenu::~TrackMenu() = default;

void TrackMenu::refresh()
{
    const QList<TrackInfo> &tracks = m_controller.tracks;
    const bool usable = !tracks.isEmpty() && !m_controller.pdfDocument.value();
    menuAction()->setEnabled(usable);
    const QList<QAction *> items = actions();
    for (qsizetype i = 0; i < items.size(); ++i) {
        const bool there = i < tracks.size();
        items[i]->setVisible(there);
        items[i]->setEnabled(there && usable);
        items[i]->setText(there ? QString(tracks[i].name).replace(u'&', "&&"_L1) : QString());
        items[i]->setChecked(there && m_isOn(tracks[i]));
    }
}
