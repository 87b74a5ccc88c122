#pragma once

#include "rycore/undo/RyUndoItem.h"
#include "rycore/undo/RyUndoStack.h"

#include <QObject>
#include <QPointer>

#include <map>
#include <utility>
#include <vector>

/// A thing with one number, recorded by key.
class ToyValue : public QObject
{
    Q_OBJECT
public:
    int value = 0;
    int recordedItems = 0;

    void set(int newValue);
    void apply(int newValue)
    {
        value = newValue;
        emit valueChanged(newValue);
    }

signals:
    void valueChanged(int value);
};

class ToyValueItem : public RyUndoItem
{
public:
    explicit ToyValueItem(ToyValue *toy) : m_toy(toy), m_key{toy, 7}, m_value(toy->value) { ++toy->recordedItems; }
    RyUndoKey key() const override { return m_key; }
    bool isAlive() const override { return m_toy; }
    void swap() override
    {
        if (m_toy)
            m_toy->apply(std::exchange(m_value, m_toy->value));
    }

private:
    QPointer<ToyValue> m_toy;
    RyUndoKey m_key;
    int m_value;
};

inline void ToyValue::set(int newValue)
{
    if (newValue == value)
        return;
    ryUndoStack()->record<ToyValueItem>(RyUndoKey{this, 7}, this);
    apply(newValue);
}

/// A thing with an order, where each insertion and removal counts: recorded without key.
class ToyList : public QObject
{
    Q_OBJECT
public:
    std::vector<int> numbers;

    void insert(size_t place, int number);
    void remove(size_t place);
};

class ToyListItem : public RyUndoItem
{
public:
    ToyListItem(ToyList *list, size_t place, int number, bool present)
        : m_list(list), m_place(place), m_number(number), m_present(present)
    {}
    void swap() override
    {
        if (!m_list)
            return;
        auto &numbers = m_list->numbers;
        if (m_present)
            numbers.insert(numbers.begin() + long(m_place), m_number);
        else
            numbers.erase(numbers.begin() + long(m_place));
        m_present = !m_present;
    }

private:
    QPointer<ToyList> m_list;
    size_t m_place;
    int m_number;
    bool m_present; // in the state that this item leads to
};

inline void ToyList::insert(size_t place, int number)
{
    ryUndoStack()->record(std::make_unique<ToyListItem>(this, place, number, false));
    numbers.insert(numbers.begin() + long(place), number);
}

inline void ToyList::remove(size_t place)
{
    ryUndoStack()->record(std::make_unique<ToyListItem>(this, place, numbers[place], true));
    numbers.erase(numbers.begin() + long(place));
}
