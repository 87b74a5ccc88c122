#include "rycore/ui/RyWidgetChoices.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QListView>
#include <QTabWidget>

#include <functional>

namespace {

constexpr int MaxListed = 40;

QString tr(const char *text)
{
    return QCoreApplication::translate("RyWidgetChoices", text);
}

/// The place of a text, else of the only text that differs by case alone, else the place itself given as a number; -1.
int findChoice(const QStringList &texts, const QString &value)
{
    const int exact = texts.indexOf(value);
    if (exact >= 0)
        return exact;
    int found = -1;
    int count = 0;
    for (int i = 0; i < texts.size(); ++i) {
        if (texts.at(i).compare(value, Qt::CaseInsensitive) == 0) {
            found = i;
            ++count;
        }
    }
    if (count == 1)
        return found;
    bool isNumber = false;
    const int index = value.trimmed().toInt(&isNumber);
    return count == 0 && isNumber && index >= 0 && index < texts.size() ? index : -1;
}

bool failList(QString *error, const QString &value, QStringList texts)
{
    if (texts.size() > MaxListed) {
        const int more = texts.size() - MaxListed;
        texts = texts.mid(0, MaxListed);
        texts.append(tr("and %1 more").arg(more));
    }
    *error = texts.isEmpty() ? tr("has no items to choose from, so not \"%1\" either").arg(value)
                             : tr("has no item \"%1\"; it has %2").arg(value, texts.join(QStringLiteral(", ")));
    return false;
}

QStringList comboTexts(const QComboBox *combo)
{
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i)
        texts.append(combo->itemText(i));
    return texts;
}

QStringList tabTexts(const QTabWidget *tabs)
{
    QStringList texts;
    for (int i = 0; i < tabs->count(); ++i) {
        QString text = tabs->tabText(i);
        texts.append(text.remove(QLatin1Char('&')));
    }
    return texts;
}

void walk(const QAbstractItemModel *model, const QModelIndex &parent, const QString &path,
          const std::function<void(const QModelIndex &, const QString &)> &visit)
{
    for (int row = 0; row < model->rowCount(parent); ++row) {
        const QModelIndex index = model->index(row, 0, parent);
        const QString text = index.data().toString();
        const QString ownPath = path.isEmpty() ? text : path + QLatin1Char('/') + text;
        visit(index, ownPath);
        walk(model, index, ownPath, visit);
    }
}

/// The item of a text in any column, or of a path; invalid when there is none or more than one.
QModelIndex findItem(const QAbstractItemView *view, const QString &value)
{
    QModelIndexList byText, byPath;
    walk(view->model(), view->rootIndex(), QString(), [&](const QModelIndex &index, const QString &path) {
        bool fits = false;
        for (int column = 0; column < view->model()->columnCount(index.parent()); ++column)
            fits = fits || index.sibling(index.row(), column).data().toString() == value;
        if (fits)
            byText.append(index);
        if (path == value || path.endsWith(QLatin1Char('/') + value))
            byPath.append(index);
    });
    if (byText.isEmpty())
        byText = byPath;
    return byText.size() == 1 ? byText.first() : QModelIndex();
}

QStringList viewTexts(const QAbstractItemView *view)
{
    QStringList texts;
    if (view->model()) {
        walk(view->model(), view->rootIndex(), QString(),
             [&](const QModelIndex &index, const QString &) { texts.append(index.data().toString()); });
    }
    return texts;
}

QStringList viewPaths(const QAbstractItemView *view, const QString &value)
{
    QStringList paths;
    walk(view->model(), view->rootIndex(), QString(), [&](const QModelIndex &index, const QString &path) {
        if (index.data().toString() == value)
            paths.append(path);
    });
    return paths;
}

} // namespace

bool RyWidgetChoices::fillCombo(QComboBox *combo, const QString &value, QString *error)
{
    const QStringList texts = comboTexts(combo);
    const int index = findChoice(texts, value);
    if (index < 0 && combo->isEditable() && combo->lineEdit()) {
        combo->lineEdit()->selectAll();
        combo->lineEdit()->insert(value);
        return true;
    }
    if (index < 0)
        return failList(error, value, texts);
    if (!(combo->model()->index(index, combo->modelColumn(), combo->rootModelIndex()).flags() & Qt::ItemIsEnabled)) {
        *error = tr("cannot take its item \"%1\", which is disabled").arg(texts.at(index));
        return false;
    }
    combo->setCurrentIndex(index);
    // By name, since connections by name may use any of them.
    QMetaObject::invokeMethod(combo, "activated", Q_ARG(int, index));
    QMetaObject::invokeMethod(combo, "activated", Q_ARG(QString, texts.at(index)));
    QMetaObject::invokeMethod(combo, "textActivated", Q_ARG(QString, texts.at(index)));
    return true;
}

bool RyWidgetChoices::fillView(QAbstractItemView *view, const QString &value, QString *error)
{
    if (!view->model())
        return failList(error, value, {});
    const bool several = view->selectionMode() == QAbstractItemView::MultiSelection
        || view->selectionMode() == QAbstractItemView::ExtendedSelection;
    // A text that holds a comma is tried as it stands first.
    QStringList values{value};
    if (several && !findItem(view, value).isValid())
        values = value.split(QLatin1Char(','), Qt::SkipEmptyParts);
    QModelIndexList chosen;
    for (const QString &one : qAsConst(values)) {
        const QString text = several ? one.trimmed() : one;
        const QModelIndex index = findItem(view, text);
        if (!index.isValid()) {
            const QStringList paths = viewPaths(view, text);
            if (paths.size() > 1) {
                *error = tr("has %1 items \"%2\"; write one of their paths: %3")
                             .arg(paths.size()).arg(text, paths.join(QStringLiteral(", ")));
                return false;
            }
            return failList(error, text, viewTexts(view));
        }
        if (!(index.flags() & Qt::ItemIsEnabled) || !(index.flags() & Qt::ItemIsSelectable)) {
            *error = tr("cannot take its item \"%1\", which is disabled").arg(text);
            return false;
        }
        chosen.append(index);
    }
    QItemSelectionModel *selection = view->selectionModel();
    for (const QModelIndex &index : qAsConst(chosen)) {
        const bool first = index == chosen.first();
        const auto how = first ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Select;
        view->scrollTo(index);
        selection->setCurrentIndex(index, how | QItemSelectionModel::Rows);
        emit view->clicked(index);
    }
    return true;
}

bool RyWidgetChoices::fillTabs(QTabWidget *tabs, const QString &value, QString *error)
{
    const QStringList texts = tabTexts(tabs);
    const int index = findChoice(texts, value);
    if (index < 0)
        return failList(error, value, texts);
    if (!tabs->isTabEnabled(index)) {
        *error = tr("cannot show its page \"%1\", which is disabled").arg(texts.at(index));
        return false;
    }
    tabs->setCurrentIndex(index);
    return true;
}

QStringList RyWidgetChoices::choices(const QWidget *widget)
{
    QStringList texts;
    if (const auto *combo = qobject_cast<const QComboBox *>(widget))
        texts = comboTexts(combo);
    else if (const auto *view = qobject_cast<const QAbstractItemView *>(widget))
        texts = viewTexts(view);
    else if (const auto *tabs = qobject_cast<const QTabWidget *>(widget))
        texts = tabTexts(tabs);
    if (texts.size() > MaxListed)
        texts = texts.mid(0, MaxListed) + QStringList(QStringLiteral("..."));
    return texts;
}
