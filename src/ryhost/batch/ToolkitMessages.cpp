#include "ryhost/batch/ToolkitMessages.h"

#include <QRegularExpression>
#include <QString>

#include <cstdio>

/// The toolkit logs in categories of its own or begins with the name of one of its classes.
static bool isOfToolkit(const QMessageLogContext &context, const QString &message)
{
    static const QRegularExpression start(QStringLiteral("^(Q[A-Z]\\w+(::~?\\w+)*(\\(.*\\))?:|This plugin does not )"));
    return (context.category && qstrncmp(context.category, "qt.", 3) == 0) || start.match(message).hasMatch();
}

static void print(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtFatalMsg || !isOfToolkit(context, message))
        std::fprintf(stderr, "%s\n", qFormatLogMessage(type, context, message).toLocal8Bit().constData());
}

void ToolkitMessages::hide()
{
    qInstallMessageHandler(print);
}
