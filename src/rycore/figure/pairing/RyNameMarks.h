#pragma once

#include <QString>

#include <vector>

/// The words of a name that say a side: left, right, l or r, in any case. Words end at anything that is no letter and
/// where lower case meets upper case. A single letter is a word only between non-letters or ends ("arm_l", "R.arm"), in
/// lower case at the beginning before a capital ("lForearm"), and as a capital after lower case at the end or before
/// digits ("ArmL", "ArmL1").
class RyNameMarks
{
public:
    struct Mark
    {
        int start;
        int length;
        bool isLeft;
    };
    /// Which of several marks are exchanged.
    enum class Which { First, Last, All };

    explicit RyNameMarks(const QString &name);

    const std::vector<Mark> &marks() const { return m_marks; }
    bool isEmpty() const { return m_marks.empty(); }
    /// The name with the other side in place of those marks. Each keeps its case as far as the words allow: "LEFT"
    /// becomes "RIGHT", "Left" "Right".
    QString exchanged(Which which) const;

    /// Letter by letter, so that equal texts but for case become equal and nothing changes its place.
    static QString folded(QString text);
    /// The name without a running number at its end that a separator or underscore sets off: "_07", "__4_", ".001".
    static QString withoutNumber(const QString &name);

private:
    void addWord(int start, int length);
    bool isLoneLetter(int place) const;

    QString m_name;
    std::vector<Mark> m_marks;
};
