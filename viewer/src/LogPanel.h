// The library's log lines (ILoggerUpdate) and the viewer's own messages, with
// a level filter. Keeps the newest lines only.
#pragma once

#include <QPlainTextEdit>
#include <QString>
#include <QVector>
#include <QWidget>

class QComboBox;

class LogPanel : public QWidget {
    Q_OBJECT
public:
    explicit LogPanel(QWidget* parent = nullptr);

public slots:
    void Add(const QString& source, const QString& level, const QString& message);
    void AddViewerMessage(const QString& message);

private:
    struct Line {
        int level;
        QString html;
    };
    void Rebuild();

    QComboBox* m_level;
    QPlainTextEdit* m_text;
    QVector<Line> m_lines;
};
