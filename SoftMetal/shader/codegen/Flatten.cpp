// SPDX-License-Identifier: Apache-2.0
// A linker for object files of one function: sections follow one another as in the file, calls outside go through a
// jump by a slot at the end, and everything else is relative to the code itself.
#include "shader/codegen/Flatten.h"

#include <llvm/ADT/StringMap.h>
#include <llvm/BinaryFormat/ELF.h>
#include <llvm/Object/ELF.h>
#include <llvm/Support/Endian.h>
#include <llvm/Support/MathExtras.h>

#include <map>

namespace softmetal::shader
{
namespace
{

using namespace llvm;
using File = object::ELF64LEFile;
using Section = File::Elf_Shdr;
using Symbol = File::Elf_Sym;
using Relocation = File::Elf_Rela;

constexpr uint64_t SlotBytes = 8;

class Flattener
{
public:
    explicit Flattener(File file) : file_(std::move(file)) {}

    Error run(StringRef entry)
    {
        auto sections = file_.sections();
        if (!sections) return sections.takeError();
        for (const Section& section : *sections)
            if (Error problem = place(section)) return problem;
        for (const Section& section : *sections)
            if (section.sh_type == ELF::SHT_SYMTAB)
                if (Error problem = findEntry(section, entry)) return problem;
        for (const Section& section : *sections)
            if (section.sh_type == ELF::SHT_RELA)
                if (Error problem = relocate(section)) return problem;
        return found_ ? Error::success() : refuse("has no function " + entry);
    }

    MachineCode take() { return std::move(code_); }

private:
    static Error refuse(const Twine& words)
    {
        return createStringError(inconvertibleErrorCode(), "the generated code " + words);
    }

    uint64_t append(uint64_t size, uint64_t alignment)
    {
        uint64_t start = alignTo(code_.bytes.size(), std::max<uint64_t>(alignment, 1));
        code_.bytes.resize(start + size);
        return start;
    }

    uint64_t indexOf(const Section& section) const { return static_cast<uint64_t>(&section - first()); }
    const Section* first() const { return cantFail(file_.sections()).begin(); }

    /// Code and constants; tables for stack unwinding stay behind, since no exception passes through a shader.
    Error place(const Section& section)
    {
        auto name = file_.getSectionName(section);
        if (!name) return name.takeError();
        bool wanted =
            (section.sh_flags & ELF::SHF_ALLOC) != 0 && section.sh_type == ELF::SHT_PROGBITS && *name != ".eh_frame";
        if (!wanted) return Error::success();
        if ((section.sh_flags & ELF::SHF_WRITE) != 0 && !name->starts_with(".data.rel.ro"))
            return refuse("has variables of its own");
        auto contents = file_.getSectionContents(section);
        if (!contents) return contents.takeError();
        uint64_t start = append(contents->size(), section.sh_addralign);
        std::copy(contents->begin(), contents->end(), code_.bytes.begin() + static_cast<std::ptrdiff_t>(start));
        starts_[indexOf(section)] = start;
        return Error::success();
    }

    Error findEntry(const Section& table, StringRef entry)
    {
        auto symbols = file_.symbols(&table);
        auto names = file_.getStringTableForSymtab(table);
        if (!symbols || !names) return joinErrors(symbols.takeError(), names.takeError());
        for (const Symbol& symbol : *symbols) {
            auto name = symbol.getName(*names);
            if (!name) return name.takeError();
            auto start = starts_.find(symbol.st_shndx);
            if (*name != entry || start == starts_.end()) continue;
            code_.entry = start->second + symbol.st_value;
            found_ = true;
        }
        return Error::success();
    }

    Error relocate(const Section& section)
    {
        auto start = starts_.find(section.sh_info);
        if (start == starts_.end()) return Error::success();
        auto table = file_.getSection(section.sh_link);
        auto relocations = file_.relas(section);
        if (!table || !relocations) return joinErrors(table.takeError(), relocations.takeError());
        for (const Relocation& relocation : *relocations)
            if (Error problem = apply(relocation, **table, start->second)) return problem;
        return Error::success();
    }

    /// Where something that the code refers to is: at an offset, or outside under a name.
    struct Target
    {
        bool outside = false;
        uint64_t offset = 0;
        StringRef name;
    };

    Expected<Target> targetOf(const Relocation& relocation, const Section& table)
    {
        auto symbol = file_.getRelocationSymbol(relocation, &table);
        if (!symbol) return symbol.takeError();
        if (!*symbol) return refuse("refers to nothing");
        auto start = starts_.find((*symbol)->st_shndx);
        if (start != starts_.end()) return Target{false, start->second + (*symbol)->st_value, {}};
        if ((*symbol)->st_shndx != ELF::SHN_UNDEF) return refuse("refers to a part that is left out");
        auto names = file_.getStringTableForSymtab(table);
        if (!names) return names.takeError();
        auto name = (*symbol)->getName(*names);
        if (!name) return name.takeError();
        return Target{true, 0, *name};
    }

    Error apply(const Relocation& relocation, const Section& table, uint64_t start)
    {
        auto target = targetOf(relocation, table);
        if (!target) return target.takeError();
        uint64_t where = start + relocation.r_offset;
        int64_t addend = relocation.r_addend;
        switch (relocation.getType(false)) {
        case ELF::R_X86_64_PLT32:
        case ELF::R_X86_64_PC32:
            return writeDistance(where, target->outside ? jumpTo(target->name) : target->offset, addend);
        case ELF::R_X86_64_GOTPCREL:
        case ELF::R_X86_64_GOTPCRELX:
        case ELF::R_X86_64_REX_GOTPCRELX:
            return writeDistance(where, slotOf(*target), addend);
        case ELF::R_X86_64_64:
            if (target->outside) return refuse("has the address of '" + target->name + "' in a table");
            return writeAddress(where, target->offset + static_cast<uint64_t>(addend));
        default:
            return refuse("has a relocation of kind " + Twine(relocation.getType(false)));
        }
    }

    Error writeDistance(uint64_t where, uint64_t target, int64_t addend)
    {
        int64_t distance = static_cast<int64_t>(target) + addend - static_cast<int64_t>(where);
        if (where + 4 > code_.bytes.size() || !isInt<32>(distance)) return refuse("is damaged");
        support::endian::write32le(&code_.bytes[where], static_cast<uint32_t>(distance));
        return Error::success();
    }

    Error writeAddress(uint64_t where, uint64_t target)
    {
        if (where + SlotBytes > code_.bytes.size()) return refuse("is damaged");
        support::endian::write64le(&code_.bytes[where], target);
        code_.places.push_back(where);
        return Error::success();
    }

    /// The slot with the address of the target.
    uint64_t slotOf(const Target& target)
    {
        uint64_t slot = 0;
        if (!target.outside) {
            slot = append(SlotBytes, SlotBytes);
            cantFail(writeAddress(slot, target.offset));
            return slot;
        }
        auto [known, isNew] = slots_.try_emplace(target.name, 0);
        if (isNew) {
            known->second = append(SlotBytes, SlotBytes);
            code_.imports.push_back({known->second, target.name.str()});
        }
        return known->second;
    }

    uint64_t jumpTo(StringRef name)
    {
        auto [known, isNew] = jumps_.try_emplace(name, 0);
        if (!isNew) return known->second;
        uint64_t slot = slotOf({true, 0, name});
        uint64_t jump = append(6, 8); // jmp *slot(%rip)
        code_.bytes[jump] = 0xff;
        code_.bytes[jump + 1] = 0x25;
        cantFail(writeDistance(jump + 2, slot, -4));
        known->second = jump;
        return jump;
    }

    File file_;
    MachineCode code_;
    bool found_ = false;
    std::map<uint64_t, uint64_t> starts_; // of sections, by their number
    StringMap<uint64_t> slots_, jumps_;
};

} // namespace

std::optional<MachineCode> flatten(MemoryBufferRef object, const char* entry, std::string& error)
{
    auto refuse = [&](Error problem) {
        error = toString(std::move(problem));
        return std::nullopt;
    };
    auto file = File::create(object.getBuffer());
    if (!file) return refuse(file.takeError());
    Flattener flattener(*file);
    if (Error problem = flattener.run(entry)) return refuse(std::move(problem));
    return flattener.take();
}

} // namespace softmetal::shader
