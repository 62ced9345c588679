#include "views/PageFailure.h"

#include "controller/AlphaTabController.h"
#include "design/Button.h"
#include "design/IconLabel.h"
#include "design/WrappedText.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

PageFailure::PageFailure(AlphaTabController &controller, QWidget *parent)
    : Surface(&Theme::Colors::canvas, parent)
    , m_controller(controller)
    , m_title(new WrappedText({}, Theme::Type::Title, &Theme::Colors::text))
    , m_explanation(new WrappedText({}, Theme::Type::Body, &Theme::Colors::secondary))
    , m_button(new Button(Button::Look::Prominent))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 40, 40, 40);
    layout->setSpacing(16);
    layout->addStretch();
    layout->addWidget(new IconLabel(u"exclamationmark.triangle"_s, 56, &Theme::Colors::secondary), 0, Qt::AlignHCenter);
    layout->addWidget(m_title);
    layout->addWidget(m_explanation);
    layout->addWidget(m_button, 0, Qt::AlignHCenter);
    layout->addStretch();

    connect(m_button, &Button::clicked, this, [this] {
        if (m_controller.pageHealth == PageHealth::Ended)
            m_controller.startPageAgain();
        else
            m_controller.stopReading();
    });
    controller.pageHealth.observe(this, [this](PageHealth) { refresh(); });
}

void PageFailure::refresh()
{
    const PageHealth health = m_controller.pageHealth;
    if (health == PageHealth::Ended) {
        m_title->setText(tr("The score view has ended"));
        if (m_controller.pageCannotStart)
            m_explanation->setText(
                tr("It could not be started again. Quit Quaverly and open it anew: your files and settings are safe."));
        else
            m_explanation->setText(m_controller.hasScore
                    ? tr("Your files and settings are safe. The score comes back as it was, at the same place.")
                    : tr("Your files and settings are safe."));
        m_button->setText(tr("Start again"));
    } else if (health == PageHealth::NotAnswering) {
        m_title->setText(tr("The score view does not answer"));
        m_explanation->setText(tr("It may still be reading a large score. You can wait, or stop it."));
        m_button->setText(tr("Stop reading"));
    }
    m_button->updateGeometry();
    setVisible(health != PageHealth::Well);
}
