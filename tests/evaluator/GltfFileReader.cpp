#include "evaluator/GltfFileReader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

namespace {

using nlohmann::json;

[[noreturn]] void fail(const std::string &reason)
{
    throw std::runtime_error(reason);
}

std::string readFile(const std::filesystem::path &path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        fail("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::uint32_t word(const std::string &bytes, std::size_t at)
{
    if (at + 4 > bytes.size())
        fail("the file ends too early");
    const auto *p = reinterpret_cast<const unsigned char *>(bytes.data()) + at;
    return std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 | std::uint32_t(p[2]) << 16 | std::uint32_t(p[3]) << 24;
}

std::string decodeBase64(const std::string &text, std::size_t from)
{
    std::string result;
    std::uint32_t bits = 0;
    int count = 0;
    for (std::size_t i = from; i < text.size() && text[i] != '='; ++i) {
        const char c = text[i];
        int value = 0;
        if (c >= 'A' && c <= 'Z')
            value = c - 'A';
        else if (c >= 'a' && c <= 'z')
            value = c - 'a' + 26;
        else if (c >= '0' && c <= '9')
            value = c - '0' + 52;
        else if (c == '+')
            value = 62;
        else if (c == '/')
            value = 63;
        else
            fail("a data URI is not in base 64");
        bits = bits << 6 | std::uint32_t(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            result.push_back(char(bits >> count & 0xff));
        }
    }
    return result;
}

std::string decodePercent(const std::string &uri)
{
    std::string result;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        if (uri[i] == '%' && i + 2 < uri.size()) {
            result.push_back(char(std::stoi(uri.substr(i + 1, 2), nullptr, 16)));
            i += 2;
        } else {
            result.push_back(uri[i]);
        }
    }
    return result;
}

std::size_t componentSize(int type)
{
    switch (type) {
    case 5120:
    case 5121:
        return 1;
    case 5122:
    case 5123:
        return 2;
    case 5125:
    case 5126:
        return 4;
    }
    fail("unknown component type " + std::to_string(type));
}

std::size_t componentCount(const std::string &type)
{
    static const std::map<std::string, std::size_t> counts = {{"SCALAR", 1}, {"VEC2", 2}, {"VEC3", 3}, {"VEC4", 4},
                                                              {"MAT2", 4},   {"MAT3", 9}, {"MAT4", 16}};
    const auto found = counts.find(type);
    if (found == counts.end())
        fail("unknown accessor type " + type);
    return found->second;
}

template<typename T>
T load(const char *at)
{
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

double decode(const char *at, int type, bool normalized)
{
    switch (type) {
    case 5120:
        return normalized ? std::max(load<std::int8_t>(at) / 127.0, -1.0) : load<std::int8_t>(at);
    case 5121:
        return load<std::uint8_t>(at) / (normalized ? 255.0 : 1.0);
    case 5122:
        return normalized ? std::max(load<std::int16_t>(at) / 32767.0, -1.0) : load<std::int16_t>(at);
    case 5123:
        return load<std::uint16_t>(at) / (normalized ? 65535.0 : 1.0);
    case 5125:
        return load<std::uint32_t>(at);
    case 5126:
        return double(load<float>(at));
    }
    fail("unknown component type " + std::to_string(type));
}

const json &element(const GltfFileData &file, const char *list, std::size_t index)
{
    const auto found = file.json.find(list);
    if (found == file.json.end() || index >= found->size())
        fail(std::string(list) + " has no element " + std::to_string(index));
    return (*found)[index];
}

/// `count` elements of `size` bytes from a buffer view, tightly packed.
std::string gather(const GltfFileData &file, std::size_t viewIndex, std::size_t offset, std::size_t size,
                   std::size_t count)
{
    const json &view = element(file, "bufferViews", viewIndex);
    const std::size_t buffer = view.at("buffer").get<std::size_t>();
    if (buffer >= file.buffers.size())
        fail("there is no buffer " + std::to_string(buffer));
    const std::string &bytes = file.buffers[buffer];
    const std::size_t begin = view.value("byteOffset", std::size_t(0));
    const std::size_t length = view.at("byteLength").get<std::size_t>();
    const std::size_t stride = view.value("byteStride", size);
    if (begin > bytes.size() || length > bytes.size() - begin)
        fail("buffer view " + std::to_string(viewIndex) + " reaches beyond its buffer");
    if (count == 0)
        return {};
    if (offset > length || size > length - offset || (stride > 0 && count - 1 > (length - offset - size) / stride))
        fail("an accessor reaches beyond buffer view " + std::to_string(viewIndex));
    std::string result;
    result.reserve(count * size);
    for (std::size_t i = 0; i < count; ++i)
        result.append(bytes, begin + offset + i * stride, size);
    return result;
}

/// Columns of small matrices start at multiples of four bytes.
std::size_t elementSize(const std::string &type, std::size_t component)
{
    if (type == "MAT2" && component == 1)
        return 8;
    if (type == "MAT3" && component < 4)
        return component == 1 ? 12 : 24;
    return component * componentCount(type);
}

std::size_t componentOffset(const std::string &type, std::size_t component, std::size_t index)
{
    if (type == "MAT2" && component == 1)
        return index / 2 * 4 + index % 2;
    if (type == "MAT3" && component < 4)
        return index / 3 * (component == 1 ? 4 : 8) + index % 3 * component;
    return index * component;
}

} // namespace

GltfFileData readGltfFile(const std::string &path)
{
    GltfFileData file;
    std::string bytes = readFile(path);
    std::string binary;
    bool hasBinary = false;
    if (bytes.compare(0, 4, "glTF") == 0) {
        if (word(bytes, 4) != 2)
            fail("not version 2 of the binary format");
        if (word(bytes, 8) > bytes.size())
            fail("the file ends too early");
        std::string text;
        for (std::size_t at = 12; at + 8 <= bytes.size();) {
            const std::size_t length = word(bytes, at);
            const std::uint32_t kind = word(bytes, at + 4);
            if (length > bytes.size() - at - 8)
                fail("a chunk reaches beyond the file");
            if (kind == 0x4E4F534A && at == 12)
                text = bytes.substr(at + 8, length);
            else if (kind == 0x004E4942 && !hasBinary) {
                binary = bytes.substr(at + 8, length);
                hasBinary = true;
            }
            at += 8 + length;
        }
        bytes = text;
    }
    file.json = json::parse(bytes);
    const json buffers = file.json.value("buffers", json::array());
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        const std::size_t length = buffers[i].at("byteLength").get<std::size_t>();
        std::string data;
        if (!buffers[i].contains("uri")) {
            if (i != 0 || !hasBinary)
                fail("buffer " + std::to_string(i) + " has no data");
            data = binary;
        } else {
            const std::string uri = buffers[i]["uri"].get<std::string>();
            const std::size_t comma = uri.find(";base64,");
            if (uri.compare(0, 5, "data:") == 0) {
                if (comma == std::string::npos)
                    fail("a data URI is not in base 64");
                data = decodeBase64(uri, comma + 8);
            } else {
                data = readFile(std::filesystem::path(path).parent_path() / decodePercent(uri));
            }
        }
        if (data.size() < length)
            fail("buffer " + std::to_string(i) + " is shorter than it says");
        data.resize(length);
        file.buffers.push_back(std::move(data));
    }
    return file;
}

std::string readGltfAccessorBytes(const GltfFileData &file, int index)
{
    if (index < 0)
        fail("negative accessor index");
    const json &accessor = element(file, "accessors", std::size_t(index));
    const std::size_t count = accessor.at("count").get<std::size_t>();
    const std::size_t size =
        elementSize(accessor.at("type").get<std::string>(), componentSize(accessor.at("componentType").get<int>()));
    if (!accessor.contains("bufferView")) {
        if (count > (std::size_t(1) << 28) / size)
            fail("an accessor without data is too large");
        return std::string(count * size, '\0');
    }
    return gather(file, accessor["bufferView"].get<std::size_t>(), accessor.value("byteOffset", std::size_t(0)), size,
                  count);
}

GltfTable readGltfAccessor(const GltfFileData &file, int index)
{
    std::string bytes = readGltfAccessorBytes(file, index);
    const json &accessor = element(file, "accessors", std::size_t(index));
    const std::string type = accessor.at("type").get<std::string>();
    const int component = accessor.at("componentType").get<int>();
    const std::size_t size = elementSize(type, componentSize(component));
    GltfTable table;
    table.count = accessor.at("count").get<std::size_t>();
    table.components = componentCount(type);

    if (accessor.contains("sparse")) {
        const json &sparse = accessor["sparse"];
        const std::size_t count = sparse.at("count").get<std::size_t>();
        const json &places = sparse.at("indices");
        const json &values = sparse.at("values");
        const int placeType = places.at("componentType").get<int>();
        const std::size_t placeSize = componentSize(placeType);
        const std::string placeBytes = gather(file, places.at("bufferView").get<std::size_t>(),
                                              places.value("byteOffset", std::size_t(0)), placeSize, count);
        const std::string valueBytes = gather(file, values.at("bufferView").get<std::size_t>(),
                                              values.value("byteOffset", std::size_t(0)), size, count);
        for (std::size_t i = 0; i < count; ++i) {
            const auto place = std::size_t(decode(placeBytes.data() + i * placeSize, placeType, false));
            if (place >= table.count)
                fail("a sparse index is out of range");
            bytes.replace(place * size, size, valueBytes, i * size, size);
        }
    }

    const bool normalized = accessor.value("normalized", false);
    table.values.reserve(table.count * table.components);
    for (std::size_t i = 0; i < table.count; ++i) {
        for (std::size_t k = 0; k < table.components; ++k) {
            const std::size_t at = i * size + componentOffset(type, componentSize(component), k);
            table.values.push_back(decode(bytes.data() + at, component, normalized));
        }
    }
    return table;
}
