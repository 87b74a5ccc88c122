#include "rycore/automation/RyWidgetChoices.h"

#include "rycore/ui/RyPlainText.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QListView>
#include <QTabWidget>

#include <algorithm>
#include <functional>
#include <iterator>
#include <vector>

namespace {

constexpr int MaxListed = 40;

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RyWidgetChoices)
};

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
        texts.append(Texts::tr("and %1 more").arg(more));
    }
    *error = texts.isEmpty() ? Texts::tr("has no items to choose from, so not \"%1\" either").arg(value)
                             : Texts::tr("has no item \"%1\"; it has %2").arg(value, texts.join(QStringLiteral(", ")));
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
    for (int i = 0; i < tabs->count(); ++i)
        texts.append(ryPlainText(tabs->tabText(i)));
    return texts;
}

struct Item
{
    QModelIndex index; // of the first column
    QString name;      // of the node that it stands for, otherwise its text
    QString namePath;  // from the root
    QString textPath;
};

bool isChoosable(const QModelIndex &index)
{
    return (index.flags() & Qt::ItemIsEnabled) && (index.flags() & Qt::ItemIsSelectable);
}

void collect(const QAbstractItemView *view, const QModelIndex &parent, const Item &above, std::vector<Item> &items)
{
    const QAbstractItemModel *model = view->model();
    const auto join = [](const QString &path, const QString &text) {
        return path.isEmpty() ? text : path + QLatin1Char('/') + text;
    };
    for (int row = 0; model && row < model->rowCount(parent); ++row) {
        const QModelIndex index = model->index(row, 0, parent);
        const QString text = index.data().toString();
        // A tree of nodes shows labels; the tips are names.
        const QString name = view->inherits("RyNodeTreeWgt") ? index.data(Qt::ToolTipRole).toString() : text;
        const Item item{index, name, join(above.namePath, name), join(above.textPath, text)};
        items.push_back(item);
        collect(view, index, item, items);
    }
}

std::vector<Item> itemsOf(const QAbstractItemView *view)
{
    std::vector<Item> items;
    collect(view, view->rootIndex(), Item(), items);
    return items;
}

bool showsText(const Item &item, const QString &value)
{
    for (int column = 0; column < item.index.model()->columnCount(item.index.parent()); ++column) {
        if (item.index.sibling(item.index.row(), column).data().toString() == value)
            return true;
    }
    return false;
}

/// The items that `value` may mean: by name, else by text in any column, else by the end of a path.
std::vector<Item> findItems(const std::vector<Item> &items, const QString &value)
{
    const auto endsPath = [&](const QString &path) { return path == value || path.endsWith(QLatin1Char('/') + value); };
    const std::function<bool(const Item &)> rules[] = {
        [&](const Item &item) { return item.name == value; },
        [&](const Item &item) { return showsText(item, value); },
        [&](const Item &item) { return endsPath(item.namePath); },
        [&](const Item &item) { return endsPath(item.textPath); },
    };
    std::vector<Item> found;
    for (const auto &rule : rules) {
        if (found.empty())
            std::copy_if(items.begin(), items.end(), std::back_inserter(found), rule);
    }
    return found;
}

QStringList namesOf(const std::vector<Item> &items)
{
    QStringList names;
    for (const Item &item : items) {
        if (isChoosable(item.index))
            names.append(item.name);
    }
    return names;
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
        *error = Texts::tr("cannot take its item \"%1\", which is disabled").arg(texts.at(index));
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
    const std::vector<Item> items = itemsOf(view);
    const bool several = view->selectionMode() == QAbstractItemView::MultiSelection ||
                         view->selectionMode() == QAbstractItemView::ExtendedSelection;
    // A text that holds a comma is tried as it stands first.
    QStringList values{value};
    if (several && findItems(items, value).empty())
        values = value.split(QLatin1Char(','), Qt::SkipEmptyParts);
    QModelIndexList chosen;
    for (const QString &one : qAsConst(values)) {
        const QString text = several ? one.trimmed() : one;
        const std::vector<Item> found = findItems(items, text);
        if (found.empty())
            return failList(error, text, namesOf(items));
        if (found.size() > 1) {
            QStringList paths;
            for (const Item &item : found)
                paths.append(item.namePath);
            *error = Texts::tr("has %1 items \"%2\"; write one of their paths: %3")
                         .arg(found.size())
                         .arg(text, paths.join(QStringLiteral(", ")));
            return false;
        }
        if (!isChoosable(found.front().index)) {
            *error = Texts::tr("cannot take its item \"%1\", which is disabled").arg(text);
            return false;
        }
        chosen.append(found.front().index);
    }
    for (const QModelIndex &index : qAsConst(chosen)) {
        const bool first = index == chosen.first();
        const auto how = first ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Select;
        view->scrollTo(index);
        view->selectionModel()->setCurrentIndex(index, how | QItemSelectionModel::Rows);
        QMetaObject::invokeMethod(view, "clicked", Q_ARG(QModelIndex, index));
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
        *error = Texts::tr("cannot show its page \"%1\", which is disabled").arg(texts.at(index));
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
        texts = namesOf(itemsOf(view));
    else if (const auto *tabs = qobject_cast<const QTabWidget *>(widget))
        texts = tabTexts(tabs);
    if (texts.size() > MaxListed)
        texts = texts.mid(0, MaxListed) + QStringList(QStringLiteral("..."));
    return texts;
}
