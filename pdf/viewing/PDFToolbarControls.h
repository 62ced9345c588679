#pragma once

#include <QWidget>

class AlphaTabController;

/// What can be done with an open PDF: how many pages stand side by side, and reading its notation.
class PDFToolbarControls final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PDFToolbarControls)

public:
    explicit PDFToolbarControls(AlphaTabController &controller, QWidget *parent = nullptr);

private:
    QWidget *makePicker();
    QWidget *makeConversion();

    AlphaTabController &m_controller;
};
