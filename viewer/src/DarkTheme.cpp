#include "DarkTheme.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace DarkTheme {

void Apply(QApplication& application)
{
    application.setStyle(QStyleFactory::create("Fusion"));
    QPalette palette;
    const QColor window(32, 36, 41);
    const QColor base(24, 27, 31);
    const QColor text(214, 220, 226);
    const QColor accent(43, 179, 230);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, QColor(30, 34, 39));
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, QColor(42, 47, 54));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, QColor(255, 90, 90));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, QColor(10, 12, 14));
    palette.setColor(QPalette::Link, accent);
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(100, 108, 118));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(100, 108, 118));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(100, 108, 118));
    application.setPalette(palette);
    application.setStyleSheet("QDockWidget::title { background: #262b31; padding: 5px; font-weight: bold; }"
                              "QToolBar { border: none; spacing: 4px; padding: 3px; }"
                              "QToolButton:checked { background: #1f5f7a; border-radius: 3px; }"
                              "QWidget#viewStatus { background: #1b1e22; color: #9aa4ae; }"
                              "QLabel#viewStatistics { color: #7fd1a8; }"
                              "QTreeView { selection-background-color: #1f5f7a; }");
}

} // namespace DarkTheme
