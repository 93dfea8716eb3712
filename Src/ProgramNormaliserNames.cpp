// SPDX-License-Identifier: Apache-2.0
// Names: from a dotted path of the program to what the dialect calls it.
#include "ProgramNormaliserRun.h"
#include "ShaderText.h"

#include <algorithm>

namespace ZALMetal
{
namespace
{

constexpr int kMostIndex = 4096; // far beyond any array or binding

// The binding's next component; `indexed` says that an index may stand behind it.
std::string_view TakePatternPart(std::string_view& pattern, bool& indexed)
{
    const size_t dot = std::min(pattern.find('.'), pattern.size());
    std::string_view part = pattern.substr(0, dot);
    pattern.remove_prefix(std::min(dot + 1, pattern.size()));
    indexed = part.ends_with("[#]");
    if (indexed) part.remove_suffix(3);
    return part;
}

// How many parts of the path the pattern stands for, 0 when it does not stand for its beginning. A binding that is
// refused as a whole is refused with any index.
size_t MatchPattern(std::string_view pattern, const Path& path, bool anyIndex)
{
    size_t part = 0;
    for (; !pattern.empty(); ++part) {
        bool indexed = false;
        const std::string_view name = TakePatternPart(pattern, indexed);
        if (part >= path.parts.size() || name != path.parts[part].name) return 0;
        if (path.parts[part].indexed && !indexed && !anyIndex) return 0;
    }
    return part;
}

// The pattern with an index, or a range of them, in place of its "#".
std::string Filled(std::string_view pattern, int first, int last)
{
    std::string text(pattern);
    const size_t at = text.find('#');
    if (at == std::string::npos) return text;

    const std::string index = std::to_string(first) + (last > first ? ".." + std::to_string(last) : "");
    return text.replace(at, 1, index);
}

} // namespace

// ---- Paths ---------------------------------------------------------------------------------------------------------

int NormaliserRun::ReadNumberIndex()
{
    const Token token = Take();
    const int index = token.kind == TokenKind::Number ? ZALMetal::ReadIndex(token.text) : -1;
    if (index < 0 || index > kMostIndex) Fail(token, "an index is not a small whole number");

    return index;
}

void NormaliserRun::ReadIndex(PathPart& part)
{
    if (!TakeMark("[")) return;
    if (Look().kind == TokenKind::Word) Fail(Look(), kAddressRegisters);

    part.indexed = true;
    part.first = part.last = ReadNumberIndex();
    if (TakeMark("..")) part.last = ReadNumberIndex();
    if (part.last < part.first) Fail(Look(), "a range runs backward");
    ExpectMark("]");
}

Path NormaliserRun::ReadPath()
{
    Path path;
    path.at = Look();
    do {
        PathPart part;
        part.name = ExpectWord("a name");
        ReadIndex(part);
        path.parts.push_back(part);
    } while (TakeMark("."));
    return path;
}

Place NormaliserRun::Resolve(const Path& path)
{
    const auto variable = variables.find(path.parts[0].name);
    if (variable != variables.end()) return ResolveVariable(path, variable->second);
    if (std::optional<Place> matrix = ResolveMatrix(path)) return *matrix;

    return ResolveBinding(path);
}

Place NormaliserRun::ResolveVariable(const Path& path, const Variable& variable)
{
    const PathPart& name = path.parts[0];
    Place place;
    place.text = variable.text;
    place.normal = variable.normal;
    place.temporary = variable.kind == Variable::Temporary;
    place.array = variable.kind == Variable::Array && !name.indexed;
    place.parameter = variable.kind == Variable::Array || variable.kind == Variable::Parameter;
    if (name.indexed && variable.kind != Variable::Array) Fail(path.at, std::string(name.name) + " is not an array");
    if (name.last != name.first) Fail(path.at, "a range stands where one value fits");
    if (name.indexed && name.first >= variable.length)
        Fail(path.at, std::string(name.name) + " has no element " + std::to_string(name.first));
    if (name.indexed) place.text += "[" + std::to_string(name.first) + "]";
    TakeSwizzle(place, path, 1);
    return place;
}

// The part behind a name, if there is one.
void NormaliserRun::TakeSwizzle(Place& place, const Path& path, size_t part) const
{
    if (part >= path.parts.size()) return;

    constexpr std::string_view from = "xyzwrgba";
    constexpr std::string_view to = "xyzwxyzw";
    const std::string_view letters = path.parts[part].name;
    const bool known = letters.size() <= 4 && letters.find_first_not_of(from) == std::string_view::npos;
    if (!known || path.parts[part].indexed || part + 1 < path.parts.size())
        Fail(path.at,
             "\"." + std::string(letters) + "\" is not a part of \"" + std::string(path.parts[part - 1].name) + "\"");

    for (char letter : letters)
        place.swizzle += to[from.find(letter)];
    if (place.swizzle == "xyzw") place.swizzle.clear();
}

// ---- Bindings ------------------------------------------------------------------------------------------------------

Place NormaliserRun::ResolveBinding(const Path& path)
{
    const BindingRow* found = nullptr;
    size_t parts = 0;
    for (const BindingRow& row : kBindingRows) {
        const bool stage = row.stage == BindingStage::Both || (row.stage == BindingStage::Vertex) == vertex;
        const size_t matched = MatchPattern(row.binding, path, row.use == BindingUse::Refused);
        if (!stage || matched <= parts) continue; // the longest binding counts
        found = &row;
        parts = matched;
    }
    if (!found) Fail(path.at, "\"" + std::string(path.parts[0].name) + "\" is not declared");
    if (found->use == BindingUse::Refused) Fail(path.at, std::string(found->binding) + ": " + found->replacement);

    const PathPart& last = path.parts[parts - 1];
    const int index = last.first + found->offset;
    const bool reachable = !std::string_view(found->replacement).starts_with("vertex.attrib[#]") ||
                           (kReachableAttributes >> (index & 31) & 1) != 0;
    if (last.last > found->most)
        Fail(path.at, std::string(found->binding) + ": there is no index above " + std::to_string(found->most));
    if (!reachable) Fail(path.at, "vertex.attrib[" + std::to_string(index) + "]: " + kNoAttribute);

    Place place;
    place.text = Filled(found->replacement, index, last.last + found->offset);
    place.normal = found->use == BindingUse::Normal;
    place.parameter = found->use == BindingUse::Local || found->use == BindingUse::Global;
    place.elements = last.last - last.first + 1;
    if (found->use == BindingUse::Unread) {
        usesUnread = true;
        place.text = Helper("unread");
    }
    if (found->use == BindingUse::Global && global.line == 0) global = path.at;
    if (found->use == BindingUse::Local && last.last >= kGlobalsAt && highLocal.line == 0) highLocal = path.at;
    TakeSwizzle(place, path, parts);
    return place;
}

// "state.matrix.NAME[n].FORM.row[a..b]", form and row being optional.
std::optional<Place> NormaliserRun::ResolveMatrix(const Path& path)
{
    if (path.parts.size() < 3 || path.parts[0].name != "state" || path.parts[1].name != "matrix") return std::nullopt;

    const PathPart& name = path.parts[2];
    const auto row = std::find_if(kMatrixRows.begin(), kMatrixRows.end(),
                                  [&name](const MatrixRow& candidate) { return name.name == candidate.name; });
    if (row == kMatrixRows.end() || name.first > row->most || name.last != name.first)
        Fail(path.at, "state.matrix." + std::string(name.name) + ": there is no such matrix here");

    Place place;
    place.matrix = place.parameter = true;
    place.text = "state.matrix." + std::string(name.name);
    if (row->most > 0) place.text += "[" + std::to_string(name.first) + "]";

    size_t part = 3;
    for (const char* form : kMatrixForms)
        if (part == 3 && path.parts.size() > part && path.parts[part].name == form) {
            place.text += "." + std::string(form);
            ++part;
        }
    if (path.parts.size() > part && path.parts[part].name == "row" && path.parts[part].indexed) {
        place.firstRow = path.parts[part].first;
        place.lastRow = path.parts[part].last;
        if (place.lastRow > 3) Fail(path.at, "a matrix has rows 0 to 3");
        ++part;
    }
    place.elements = place.lastRow - place.firstRow + 1;
    TakeSwizzle(place, path, part);
    return place;
}

// The translator's rows of the inverse modelview matrix are those of the matrix itself, so they go through an array.
std::string NormaliserRun::RowText(const Place& matrix, int row)
{
    const std::string index = "[" + std::to_string(row) + "]";
    if (matrix.text != "state.matrix.modelview.inverse") return matrix.text + ".row" + index;

    usesInverse = true;
    return Helper("inverse") + index;
}

// ---- The program's names -------------------------------------------------------------------------------------------

void NormaliserRun::Declare(const Token& name, Variable variable)
{
    if (!variables.emplace(name.text, std::move(variable)).second)
        Fail(name, "\"" + std::string(name.text) + "\" is declared twice");
}

// The name under which the shading language takes a name of the program.
std::string NormaliserRun::NewName(std::string_view name) const
{
    const auto taken = [this](std::string_view wanted) {
        for (const char* word : kTakenNames)
            if (wanted == word) return true;
        for (const char* beginning : kTakenBeginnings)
            if (wanted.starts_with(beginning)) return true;
        const bool loopName = wanted.size() == 1 && wanted[0] >= 'i' && wanted[0] <= 'z';
        return hasLoops && loopName;
    };
    return taken(name) ? Helper("") + std::string(name) : std::string(name);
}

} // namespace ZALMetal
