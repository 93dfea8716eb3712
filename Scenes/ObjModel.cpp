// SPDX-License-Identifier: Apache-2.0
#include "ObjModel.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>
#include <tuple>

namespace scenes {
namespace {

using Vector3 = std::array<float, 3>;

constexpr float CreaseCosine = 0.5f; // 60 degrees
constexpr float Pi = 3.14159265358979f;
constexpr int64_t None = -1;

Vector3 operator-(const Vector3& a, const Vector3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
float dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vector3 cross(const Vector3& a, const Vector3& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector3 normalized(const Vector3& v)
{
    float length = std::sqrt(dot(v, v));
    if (!(length > 0)) return {0, 1, 0};
    return {v[0] / length, v[1] / length, v[2] / length};
}

struct Corner
{
    int64_t position = None, texcoord = None, normal = None;
};

/// What the file says, before corners become vertices.
struct Source
{
    std::vector<Vector3> positions, normals;
    std::vector<std::array<float, 2>> texcoords;
    std::vector<std::array<Corner, 3>> triangles;
};

std::string_view nextWord(std::string_view& line)
{
    size_t begin = line.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) {
        line = {};
        return {};
    }
    size_t end = std::min(line.find_first_of(" \t\r", begin), line.size());
    std::string_view word = line.substr(begin, end - begin);
    line.remove_prefix(end);
    return word;
}

template <class Number>
bool parseWhole(std::string_view word, Number& value)
{
    if (!word.empty() && word[0] == '+') word.remove_prefix(1);
    auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
    return status == std::errc() && end == word.data() + word.size();
}

template <size_t N>
bool parseNumbers(std::string_view line, std::array<float, N>& values)
{
    for (float& value : values) {
        std::string_view word = nextWord(line);
        if (!parseWhole(word, value) || !std::isfinite(value)) return false;
    }
    return true;
}

/// One index of a face corner: 1 is the first, -1 the latest. False when it names nothing.
bool resolve(std::string_view word, size_t count, int64_t& index)
{
    int64_t value = 0;
    if (!parseWhole(word, value)) return false;
    index = value > 0 ? value - 1 : static_cast<int64_t>(count) + value;
    return value != 0 && index >= 0 && index < static_cast<int64_t>(count);
}

bool parseCorner(std::string_view word, const Source& source, Corner& corner)
{
    size_t first = word.find('/');
    if (!resolve(word.substr(0, first), source.positions.size(), corner.position)) return false;
    if (first == std::string_view::npos) return true;
    size_t second = word.find('/', first + 1);
    std::string_view texcoord = word.substr(first + 1, second == std::string_view::npos ? second : second - first - 1);
    if (!texcoord.empty() && !resolve(texcoord, source.texcoords.size(), corner.texcoord)) return false;
    if (second == std::string_view::npos) return true;
    return resolve(word.substr(second + 1), source.normals.size(), corner.normal);
}

/// A polygon as a fan; empty on success, else what is wrong.
std::string parseFace(std::string_view line, Source& source)
{
    std::vector<Corner> corners;
    for (std::string_view word = nextWord(line); !word.empty(); word = nextWord(line)) {
        Corner corner;
        if (!parseCorner(word, source, corner)) return "a face names the corner '" + std::string(word) + "', which does not exist";
        corners.push_back(corner);
    }
    if (corners.size() < 3) return "a face has fewer than three corners";
    for (size_t i = 2; i < corners.size(); ++i) source.triangles.push_back({corners[0], corners[i - 1], corners[i]});
    return {};
}

std::string parseLine(std::string_view line, Source& source)
{
    std::string_view word = nextWord(line);
    if (word == "f") return parseFace(line, source);
    if (word == "v" || word == "vn") {
        Vector3 values;
        if (!parseNumbers(line, values)) return "'" + std::string(word) + "' needs three numbers";
        (word == "v" ? source.positions : source.normals).push_back(values);
    } else if (word == "vt") {
        std::array<float, 2> values;
        if (!parseNumbers(line, values)) return "'vt' needs two numbers";
        source.texcoords.push_back(values);
    }
    return {};
}

/// Not normalised: its length is twice the area, which is the weight in the average.
Vector3 faceNormal(const Source& source, const std::array<Corner, 3>& triangle)
{
    const Vector3& a = source.positions[triangle[0].position];
    return cross(source.positions[triangle[1].position] - a, source.positions[triangle[2].position] - a);
}

/// Normals for corners that have none: the average over the faces around the point that lean the same way. Points are
/// told apart by value, not by index, so that patches which repeat the vertices of a common edge still join smoothly.
class SmoothNormals
{
public:
    explicit SmoothNormals(const Source& source)
    {
        for (const auto& triangle : source.triangles) {
            Vector3 normal = faceNormal(source, triangle);
            for (const Corner& corner : triangle) faces_[source.positions[corner.position]].push_back(normal);
        }
    }

    Vector3 at(const Vector3& position, const Vector3& face) const
    {
        Vector3 sum = {0, 0, 0};
        Vector3 direction = normalized(face);
        for (const Vector3& other : faces_.at(position)) {
            if (dot(direction, normalized(other)) < CreaseCosine) continue;
            for (int i = 0; i < 3; ++i) sum[i] += other[i];
        }
        return normalized(dot(sum, sum) > 0 ? sum : face);
    }

private:
    std::map<Vector3, std::vector<Vector3>> faces_; // by position
};

/// Texture coordinates for a whole triangle at once, so that one that crosses the seam does not run backwards.
std::array<std::array<float, 2>, 3> cylinderTexcoords(const Source& source, const std::array<Corner, 3>& triangle,
                                                      const Model& model)
{
    std::array<std::array<float, 2>, 3> result;
    float height = std::max(model.maximum[1] - model.minimum[1], 1e-20f);
    for (int i = 0; i < 3; ++i) {
        const Vector3& p = source.positions[triangle[i].position];
        float x = p[0] - (model.minimum[0] + model.maximum[0]) / 2, z = p[2] - (model.minimum[2] + model.maximum[2]) / 2;
        result[i] = {std::atan2(x, z) / (2 * Pi) + 0.5f, (p[1] - model.minimum[1]) / height};
    }
    for (int i = 1; i < 3; ++i) {
        if (result[i][0] - result[0][0] > 0.5f) result[i][0] -= 1;
        if (result[i][0] - result[0][0] < -0.5f) result[i][0] += 1;
    }
    return result;
}

void measure(const Source& source, Model& model)
{
    model.minimum = model.maximum = source.positions[source.triangles[0][0].position];
    for (const auto& triangle : source.triangles) {
        for (const Corner& corner : triangle) {
            const Vector3& p = source.positions[corner.position];
            for (int i = 0; i < 3; ++i) {
                model.minimum[i] = std::min(model.minimum[i], p[i]);
                model.maximum[i] = std::max(model.maximum[i], p[i]);
            }
        }
    }
}

/// Corners that agree in everything become one vertex.
void index(const Source& source, Model& model)
{
    using Key = std::tuple<Vector3, Vector3, std::array<float, 2>>;
    std::map<Key, uint32_t> known;
    SmoothNormals smooth(source);
    for (const auto& triangle : source.triangles) {
        Vector3 face = faceNormal(source, triangle);
        auto wrapped = cylinderTexcoords(source, triangle, model);
        for (int i = 0; i < 3; ++i) {
            const Corner& c = triangle[i];
            Vertex v = {source.positions[c.position],
                        c.normal == None ? smooth.at(source.positions[c.position], face) : normalized(source.normals[c.normal]),
                        c.texcoord == None ? wrapped[i] : source.texcoords[c.texcoord]};
            auto [place, added] = known.try_emplace(Key{v.position, v.normal, v.texcoord}, model.vertices.size());
            if (added) model.vertices.push_back(v);
            model.indices.push_back(place->second);
        }
    }
}

} // namespace

bool readObj(std::istream& text, const std::string& name, Model& model, std::string& error)
{
    model = Model();
    Source source;
    std::string line;
    for (size_t number = 1; std::getline(text, line); ++number) {
        std::string_view statement = std::string_view(line).substr(0, line.find('#'));
        std::string wrong = parseLine(statement, source);
        if (wrong.empty()) continue;
        error = name + ":" + std::to_string(number) + ": " + wrong;
        return false;
    }
    if (source.triangles.empty()) {
        error = name + ": this is no Wavefront OBJ model: it has no faces";
        return false;
    }
    measure(source, model);
    index(source, model);
    return true;
}

bool readObjFile(const std::string& path, Model& model, std::string& error)
{
    std::error_code status;
    if (std::filesystem::is_directory(path, status)) {
        error = path + ": this is a folder, not a model";
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        error = path + ": the file cannot be opened";
        return false;
    }
    return readObj(file, path, model, error);
}

} // namespace scenes
