#include "LogPanel.h"

#include <QComboBox>
#include <QDateTime>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int KeptLines = 2000;
const char* const Levels[] = {"Debug", "Info", "Warning", "Error", "Deadly"};
const char* const LevelColours[] = {"#7d8793", "#c9d1d9", "#e8b339", "#f07a5a", "#ff4d6d"};

int LevelIndex(const QString& level)
{
    for (int i = 0; i < 5; ++i) {
        if (level == Levels[i]) {
            return i;
        }
    }
    return 1;
}

} // namespace

LogPanel::LogPanel(QWidget* parent) : QWidget(parent)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel("Show from"));
    m_level = new QComboBox;
    m_level->setObjectName("logLevel");
    for (const char* level : Levels) {
        m_level->addItem(level);
    }
    m_level->setCurrentIndex(1);
    top->addWidget(m_level);
    top->addStretch();
    auto* clear = new QPushButton("Clear");
    top->addWidget(clear);
    column->addLayout(top);
    m_text = new QPlainTextEdit;
    m_text->setObjectName("logText");
    m_text->setReadOnly(true);
    m_text->setMaximumBlockCount(KeptLines);
    m_text->setFont(QFont("DejaVu Sans Mono", 9));
    column->addWidget(m_text, 1);
    connect(m_level, &QComboBox::currentIndexChanged, this, &LogPanel::Rebuild);
    connect(clear, &QPushButton::clicked, this, [this] {
        m_lines.clear();
        m_text->clear();
    });
}

void LogPanel::Add(const QString& source, const QString& level, const QString& message)
{
    const int index = LevelIndex(level);
    const QString html = QString("<span style='color:#7d8793'>%1</span> <span style='color:%2'>%3</span> "
                                 "<span style='color:#58a6ff'>%4</span> <span style='color:%2'>%5</span>")
                             .arg(QDateTime::currentDateTime().toString("HH:mm:ss.zzz"), LevelColours[index],
                                  QString(Levels[index]).leftJustified(7, ' ').replace(' ', "&nbsp;"),
                                  source.toHtmlEscaped(), message.toHtmlEscaped());
    m_lines.append({index, html});
    if (m_lines.size() > KeptLines) {
        m_lines.remove(0, m_lines.size() - KeptLines);
    }
    if (index >= m_level->currentIndex()) {
        m_text->appendHtml(html);
    }
}

void LogPanel::AddViewerMessage(const QString& message)
{
    Add("Viewer", "Warning", message);
}

void LogPanel::Rebuild()
{
    m_text->clear();
    for (const Line& line : m_lines) {
        if (line.level >= m_level->currentIndex()) {
            m_text->appendHtml(line.html);
        }
    }
}
