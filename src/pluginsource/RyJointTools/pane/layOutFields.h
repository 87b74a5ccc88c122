#pragma once

#include <QString>

#include <vector>

class QVBoxLayout;
class QWidget;
class RyFloatPropertyWgt;

/// What a number of a page says. `name`: the object names are made from it. `spoken` goes before the label where that
/// alone does not say what it is.
struct RyFieldTexts
{
    QString label;
    QString name;
    QString spoken;
    QString suffix;
};

/// Fills a page with a column that scrolls.
QVBoxLayout *makeScrollingColumn(QWidget *page, const QString &areaName, const QString &contentsName);
/// A number without a slider, in no layout yet. What it does not take is said in the main window.
RyFloatPropertyWgt *makeField(QWidget *parent, const RyFieldTexts &texts);
void showMessagesOf(const RyFloatPropertyWgt *field);
/// Pixels of the longest label.
int widestLabel(const std::vector<RyFloatPropertyWgt *> &fields);
