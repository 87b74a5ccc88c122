// A plug-in that acts for the person before the screen while the program starts, and writes down what that person sees.
//
//   RY_START_REPORT   where to write, a JSON object a line: {"kind": "dialog"...} for each dialog or box that opens,
//                     {"kind": "window"...} for the window once nothing asks any more; then the program is ended
//   RY_START_ANSWERS  "TITLE=BUTTON" a line; others are answered as their default button would
#include "rycore/automation/RyDialogDriver.h"
#include "rycore/base/RyPlugin.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QThread>
#include <QTimer>

#include <memory>

namespace {

constexpr int Beat = 20; // milliseconds
constexpr int QuietBeats = 5;

void report(const QJsonObject &line)
{
    QFile file(qEnvironmentVariable("RY_START_REPORT"));
    if (file.open(QIODevice::Append))
        file.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
}

class Person : public QObject
{
public:
    Person()
    {
        for (const QString &rule :
             qEnvironmentVariable("RY_START_ANSWERS").split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            m_driver.setAnswer(rule.section(QLatin1Char('='), 0, 0), rule.section(QLatin1Char('='), 1));
        connect(&m_driver, &RyDialogDriver::opened, this, [](const QDialog *dialog) { reportDialog(dialog); });
        connect(&m_watch, &QTimer::timeout, this, &Person::endWhenStarted);
        m_watch.start(Beat);
    }

private:
    static void reportDialog(const QDialog *dialog)
    {
        const RyDialogRecord record = RyDialogRecord::of(dialog);
        QJsonArray labels, rows;
        for (const QLabel *label : dialog->findChildren<QLabel *>()) {
            if (!label->objectName().isEmpty() && !label->text().isEmpty())
                labels.append(label->text());
        }
        for (const QListWidget *list : dialog->findChildren<QListWidget *>()) {
            for (int i = 0; i < list->count(); ++i)
                rows.append(list->item(i)->text());
        }
        report({{QStringLiteral("kind"), QStringLiteral("dialog")},
                {QStringLiteral("title"), record.title},
                {QStringLiteral("text"), record.text},
                {QStringLiteral("labels"), labels},
                {QStringLiteral("rows"), rows},
                {QStringLiteral("buttons"), QJsonArray::fromStringList(record.buttons)},
                {QStringLiteral("default"), record.defaultButton}});
    }
    /// The program handles events by itself only once all has been asked and read; a dialog does so for another moment
    /// after it was answered.
    void endWhenStarted()
    {
        const bool isStarted = thread()->loopLevel() == 1 && !QApplication::activeModalWidget();
        m_quietBeats = isStarted ? m_quietBeats + 1 : 0;
        if (m_quietBeats < QuietBeats)
            return;
        for (const QWidget *widget : QApplication::topLevelWidgets()) {
            if (const auto *window = qobject_cast<const QMainWindow *>(widget)) {
                report({{QStringLiteral("kind"), QStringLiteral("window")},
                        {QStringLiteral("title"), window->windowTitle()},
                        {QStringLiteral("modified"), window->isWindowModified()},
                        {QStringLiteral("errors"), QJsonArray::fromStringList(m_driver.errors())}});
            }
        }
        m_watch.stop();
        QCoreApplication::quit();
    }

    RyDialogDriver m_driver;
    QTimer m_watch;
    int m_quietBeats = 0;
};

RyPlugin plugin(QStringLiteral("Start"), QString(), QString(), 1, 0, 0, 0);
std::unique_ptr<Person> person; // goes with the library

} // namespace

extern "C" __attribute__((visibility("default"))) RyVersion getSDKVersion()
{
    return RyVersion(4, 22, 0, 7);
}

extern "C" __attribute__((visibility("default"))) RyPlugin *getPluginDefinition()
{
    if (!person)
        person = std::make_unique<Person>();
    return &plugin;
}
