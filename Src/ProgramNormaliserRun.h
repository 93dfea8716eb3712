// SPDX-License-Identifier: Apache-2.0
// One rewriting of one program. It lives for one call of NormaliseProgram: statement by statement, a fault ends the
// statement and not the run, so that a program's author sees all of them. The steps stand in ProgramNormaliserNames,
// -Operands, -Declarations, -Instructions and -Rewrites.
#pragma once

#include "ProgramNormaliser.h"
#include "ProgramNormaliserTable.h"
#include "ProgramNormaliserTokens.h"

#include <map>
#include <optional>

namespace ZALMetal
{

// A dotted name, cut: "state.matrix.mvp.row[0..3]" has four parts.
struct PathPart
{
    std::string_view name;
    bool indexed = false;
    int first = 0;
    int last = 0;
};

struct Path
{
    Token at; // its first token
    std::vector<PathPart> parts;
};

// What a name of the program stands for.
struct Variable
{
    enum Kind
    {
        Temporary,
        Parameter,
        Array,
        Binding, // another name for `text`
    };
    Kind kind = Temporary;
    std::string text;    // in the rewritten program
    bool normal = false; // stands for the vertex normal as the standard knows it, with a fourth component of 1
    int length = 0;      // of an array
};

// What a path stands for, in words of the dialect.
struct Place
{
    std::string text;
    std::string swizzle; // "xyzw" letters; empty for none
    bool array = false;  // a whole array
    bool normal = false;
    bool temporary = false;
    bool parameter = false; // a parameter can have this value
    // A matrix: `text` is its name, and these are the rows wanted, all four when none were named.
    bool matrix = false;
    int firstRow = 0;
    int lastRow = 3;
    // How many values `text` stands for: rows of a matrix, or a range of the program's parameters.
    int elements = 1;
};

// A source, ready to be written.
struct Source
{
    std::string text; // a name or a number
    std::string swizzle;
    bool negative = false;
    bool absolute = false;
    bool number = false;
    bool normal = false;

    static Source Number(const char* text);
    std::string Written() const;
    Source Component(int which) const; // of a vector; a number is all its components
    Source Negated() const;
};

struct Destination
{
    std::string text;
    std::string mask; // "xyzw" letters; empty for all
    bool temporary = false;

    std::string Written() const { return With(mask); }
    std::string With(std::string_view letters) const;
    Source Part(std::string_view letters) const; // as a source
    bool IsReadBy(const std::vector<Source>& sources) const;
    bool Has(char letter) const { return mask.empty() || mask.find(letter) != std::string::npos; }
};

class NormaliserRun
{
public:
    // `kind` is the header; the program is given without it.
    NormaliserRun(std::string_view kind, std::string_view program, std::vector<NormaliserFault>& found);

    std::string Run();

private:
    // ---- The program (ProgramNormaliser) ----
    bool ReadStatement(); // false at the end
    void TranslateStatement();
    void ReadOption();
    void SkipStatement();
    std::string Assemble() const;

    // ---- Tokens (ProgramNormaliserOperands) ----
    const Token& Look(size_t ahead = 0) const;
    const Token& Take();
    bool IsMark(std::string_view mark) const;
    bool TakeMark(std::string_view mark);
    void ExpectMark(std::string_view mark);
    std::string_view ExpectWord(const char* what);
    [[noreturn]] static void Fail(const Token& at, const std::string& text);

    // ---- Names (ProgramNormaliserNames) ----
    Path ReadPath();
    void ReadIndex(PathPart& part);
    int ReadNumberIndex();
    Place Resolve(const Path& path);
    Place ResolveVariable(const Path& path, const Variable& variable);
    Place ResolveBinding(const Path& path);
    std::optional<Place> ResolveMatrix(const Path& path);
    void TakeSwizzle(Place& place, const Path& path, size_t part) const;
    std::string RowText(const Place& matrix, int row);
    void Declare(const Token& name, Variable variable);
    std::string NewName(std::string_view name) const;
    std::string Helper(const char* name) const { return helperPrefix + name; }

    // ---- Operands (ProgramNormaliserOperands) ----
    Source ReadSource();
    Source ReadNumberSource();
    std::string ReadConstantSwizzle();
    Source ReadVectorSource();
    Source ReadPathSource();
    void ReadDestination(Destination& destination);
    std::string ReadVector(); // "{ 1.0, 0.0, 0.0, 1.0 }"
    std::string ReadSignedNumber();
    std::string ConstantFor(const std::string& vector);
    void GiveFourth(Source& source, Reads reads, const std::string& mask);

    // ---- Declarations (ProgramNormaliserDeclarations) ----
    bool ReadDeclaration();
    void AddDeclaration(const std::string& line);
    void ReadTemporaries(bool integers);
    void ReadParameter();
    void ReadSingleParameter(const Token& name);
    void ReadArrayParameter(const Token& name, int room);
    void ReadElement(std::vector<std::string>& elements, int& count);
    void ReadBindingName();
    void ReadAlias();

    // ---- Instructions (ProgramNormaliserInstructions) ----
    struct Instruction
    {
        const StandardOpcode* opcode = nullptr;
        Token at;
        bool saturated = false;
        bool setsCondition = false;
        Destination destination;
        std::vector<Source> sources;
    };
    Instruction ReadOpcode();
    void ReadModifier(Instruction& instruction);
    void ReadInstruction();
    void WriteInstruction(const Instruction& instruction);
    void WriteAsIs(const Instruction& instruction);
    void WriteFlow(const Instruction& instruction);
    void WriteCondition();
    void FollowBlocks(const Instruction& instruction);
    void OpenBlock(const Token& at, char kind);
    void WriteSample(const Instruction& instruction);
    void WriteMove(const Instruction& instruction, char letter, const Source& source);
    void Write(const char* opcode, bool saturated, const std::string& destination, const std::vector<Source>& sources);
    Destination Scratch();

    // ---- Instructions that the dialect lacks (ProgramNormaliserRewrites) ----
    void WriteSwizzle(const Instruction& instruction);
    void WriteHomogeneous(const Instruction& instruction);
    void WriteDistance(const Instruction& instruction);
    void WriteLighting(const Instruction& instruction);
    void WriteLogarithm(const Instruction& instruction);
    void WriteExponential(const Instruction& instruction);
    void WriteSineCosine(const Instruction& instruction);
    void WriteCross(const Instruction& instruction);
    void WriteUnequal(const Instruction& instruction);
    void WriteQuotient(const Instruction& instruction);
    void WriteUnit(const Instruction& instruction);

    // The program.
    std::vector<Token> tokens;
    size_t next = 0;
    bool vertex = false;
    std::string header;
    std::vector<NormaliserFault>& faults;

    // What it declares, and where its own and the standard's parameters of all programs were used.
    std::map<std::string, Variable, std::less<>> variables;
    Token highLocal; // a use of a local that lies among the globals
    Token global;    // a use of a global

    // What is written.
    std::string helperPrefix = "zal_"; // of names that the program does not use
    bool hasLoops = false;
    bool positionInvariant = false;
    bool usesScratch = false;
    bool usesUnread = false;
    bool usesNormal = false;
    bool usesInverse = false;
    std::map<std::string, std::string, std::less<>> constants; // by value, their names
    std::vector<std::string> firstLines;                       // declarations that stand before all others
    std::string blocks;                                        // that are open: I, E for the second half of an I, R
    std::vector<std::string> lines;
};

} // namespace ZALMetal
