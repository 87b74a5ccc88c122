#pragma once

#include "rycore/base/RyFirstPlaces.h"
#include "rycore/io/obj/RyObjFile.h"

#include <array>
#include <string_view>

/// Reads the text of an OBJ file line by line.
class RyObjParser
{
public:
    RyObjParser(const QByteArray &text, RyObjFile &file)
        : m_text(text.constData(), std::size_t(text.size())), m_file(file)
    {}

    /// False when the text is refused; `error` says in which line and why.
    bool parse();
    const QString &error() const { return m_error; }

private:
    /// No control bytes but behind the last line.
    bool checkText();
    bool readLine(std::string_view line);
    /// For what does not matter for the shape: numbers that cannot be read are 0, with a warning.
    void readLooseNumbers(std::string_view line, double out[3], int least, const char *what);
    bool readVertex(std::string_view line);
    bool readFacet(std::string_view line);
    bool readCorner(std::string_view token, RyObjFile::Corner &corner);
    bool readIndex(std::string_view text, std::size_t count, const char *what, int &index);
    /// The first comment that names a unit of length after the word unit or units.
    void rememberUnit(std::string_view comment);
    void rememberName(std::string_view line, std::vector<QString> &names, RyFirstPlaces<QString> &places, int &current);
    bool checkCorners();
    bool fail(const QString &reason);
    bool failAt(int line, const QString &reason);
    void warn(int line, const QString &text);

    std::string_view m_text;
    RyObjFile &m_file;
    QString m_error;
    int m_line = 0;
    bool m_isUnfinishedLine = false;
    int m_group = -1;
    int m_object = -1;
    int m_material = -1;
    RyFirstPlaces<QString> m_groupPlaces;
    RyFirstPlaces<QString> m_objectPlaces;
    RyFirstPlaces<QString> m_materialPlaces;
    std::vector<int> m_facetLines;
    QByteArray m_joined; // a line that was continued
    int m_warningCount = 0;
};
