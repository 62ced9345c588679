#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QWidget>

class AlphaTabController;
class Spinner;

/// What can be done with an open PDF: how many pages stand side by side, and reading its notation.
class PDFToolbarControls final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PDFToolbarControls)

public:
    explicit PDFToolbarControls(AlphaTabController &controller, QWidget *parent = nullptr);

private:
    QWidget *makePicker();
    QWidget *makeConversion();
    void showProgress(Spinner &spinner);

    AlphaTabController &m_controller;
    /// Since the conversion began.
    QElapsedTimer m_conversionTime;
    /// What the spinner has told screen readers last.
    QString m_conversionStep;
};
