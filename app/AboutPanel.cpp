#include "app/AboutPanel.h"

#include "app/Versions.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QString resource(const QString &name)
{
    QFile file(u":/licences/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QLabel *selectable(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

AboutPanel::AboutPanel(QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("About Quaverly"));
    setAttribute(Qt::WA_DeleteOnClose);
    resize(620, 560);
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(12);

    auto *summary = new QLabel(tr("Practise guitar from scores."));
    layout->addWidget(summary);
    auto *versions = new QFormLayout;
    versions->setLabelAlignment(Qt::AlignLeading);
    // Beside the names also where lines run from the right.
    versions->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    for (const Versions::Part &part : Versions::parts()) {
        QLabel *version = selectable(part.version);
        version->setAccessibleName(part.name + u' ' + part.version);
        versions->addRow(part.name, version);
    }
    layout->addLayout(versions);

    auto *licences = new QTextBrowser;
    licences->setAccessibleName(tr("Licences"));
    licences->setMarkdown(
        u"# Quaverly\n\n"_s + resource(u"LICENSE"_s) + u"\n\n"_s + resource(u"THIRD_PARTY_NOTICES.md"_s));
    // Long paths would be wider than the panel, and Qt's tables are by a pixel.
    licences->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    licences->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The addresses are there to be read: nothing is opened from here.
    licences->setOpenLinks(false);
    layout->addWidget(licences, 1);

    auto *buttons = new QDialogButtonBox;
    QPushButton *close = buttons->addButton(tr("Close"), QDialogButtonBox::RejectRole);
    close->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    close->setFocus();
}

AboutPanel::~AboutPanel() = default;
