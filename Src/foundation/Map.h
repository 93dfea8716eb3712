// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/Vector.h"

#include <cmath>
#include <cstdint>
#include <utility>

namespace ZALM
{

/// An ordered map: a red-black tree whose cells sit in blocks, so that inserting seldom allocates and cells never move.
/// One cursor serves finding and iterating. Keys and values need a default; nothing throws.
template <class K, class V>
class Map
{
public:
    enum Color : uint32_t
    {
        Black = 0,
        Red = 1
    };

    struct Cell
    {
        K key;
        V value;
        uint32_t color = Red;
        Cell* left = nullptr;
        Cell* right = nullptr;
        Cell* parent = nullptr;
        uint8_t block = 0; // index of the block that holds the cell
    };

    Map() = default;
    Map(const Map&) = delete;
    Map& operator=(const Map&) = delete;
    virtual ~Map() = default;

    /// 0, or 2 without memory. A key that is present keeps its value, and inserted is false.
    int insert(bool& inserted, const K& key, const V& value)
    {
        inserted = false;
        Cell* parent = nullptr;
        Cell** link = &root;
        while (*link) {
            parent = *link;
            if (key < parent->key)
                link = &parent->left;
            else if (parent->key < key)
                link = &parent->right;
            else
                return Success;
        }
        Cell* cell = newCell();
        if (!cell) return OutOfMemory;
        cell->key = key;
        if (cell->key < key || key < cell->key) { // a text that found no memory would stand in the wrong place
            freeCell(cell);
            return OutOfMemory;
        }
        cell->value = value;
        cell->color = Red;
        cell->left = cell->right = nullptr;
        cell->parent = parent;
        *link = cell;
        ++elements;
        inserted = true;
        balanceInsertion(cell);
        return Success;
    }

    /// Removes the element if it is there.
    void erase(const K& key)
    {
        Cell* cell = root;
        while (cell) {
            if (key < cell->key)
                cell = cell->left;
            else if (cell->key < key)
                cell = cell->right;
            else
                break;
        }
        if (cell) remove(cell);
    }

    /// The cell with the key, or null. The cursor is left on the last cell visited.
    Cell* find(const K& key)
    {
        for (Cell* cell = root; cell;) {
            cursor = cell;
            if (key < cell->key)
                cell = cell->left;
            else if (cell->key < key)
                cell = cell->right;
            else
                return cell;
        }
        return nullptr;
    }

    /// Puts the cursor on the smallest key; null when the map is empty.
    Cell* begin()
    {
        cursor = root ? leftmost(root) : nullptr;
        return cursor;
    }

    /// Moves the cursor to the next larger key; null behind the last.
    Cell* next()
    {
        cursor = cursor ? successor(cursor) : nullptr;
        return cursor;
    }

    Cell* end() { return nullptr; }

    /// Removes the element under the cursor, which moves on to the next larger key.
    void erase_current()
    {
        if (!cursor) return;
        Cell* cell = cursor;
        cursor = successor(cell);
        remove(cell);
    }

    /// Adds a block of cells: 4, 10, 19, 32, … 0, or 2 without memory. A block that got no cells stays, empty.
    int Allocate()
    {
        constexpr size_t MostBlocks = 256; // a cell names its block in one byte
        if (blocks.count >= MostBlocks) return OutOfMemory;
        const float cells = (1.0f - std::pow(1.5f, static_cast<float>(blocks.count + 1))) * 4.0f * -2.0f;
        if (blocks.push_back(Vector<Cell>()) != Success) return OutOfMemory;
        constexpr float MostCells = 0x1p62f; // far beyond all memory, and still a number that can be counted to
        return cells < MostCells ? blocks.back().reserve(static_cast<size_t>(cells)) : OutOfMemory;
    }

    size_t size() const { return elements; }

    Vector<Vector<Cell>> blocks;
    size_t elements = 0;
    Cell* root = nullptr;
    Cell* cursor = nullptr;

private:
    // ---- cells -----------------------------------------------------------------------------------------------------

    Cell* newCell()
    {
        if (freeCells) {
            Cell* cell = freeCells;
            freeCells = cell->right;
            return cell;
        }
        if (blocks.empty() || blocks.back().count == blocks.back().capacity)
            if (Allocate() != Success) return nullptr;
        Vector<Cell>& block = blocks.back();
        if (block.count == block.capacity || block.push_back(Cell()) != Success) return nullptr;
        block.back().block = static_cast<uint8_t>(blocks.count - 1);
        return &block.back();
    }

    void freeCell(Cell* cell)
    {
        cell->key = K();
        cell->value = V();
        cell->right = freeCells;
        freeCells = cell;
    }

    // ---- walking ---------------------------------------------------------------------------------------------------

    static Cell* leftmost(Cell* cell)
    {
        while (cell->left)
            cell = cell->left;
        return cell;
    }

    static Cell* successor(Cell* cell)
    {
        if (cell->right) return leftmost(cell->right);
        while (cell->parent && cell->parent->right == cell)
            cell = cell->parent;
        return cell->parent;
    }

    // ---- balance ---------------------------------------------------------------------------------------------------

    static bool isRed(const Cell* cell) { return cell && cell->color == Red; }

    void replaceChild(Cell* parent, Cell* from, Cell* to)
    {
        if (!parent)
            root = to;
        else if (parent->left == from)
            parent->left = to;
        else
            parent->right = to;
        if (to) to->parent = parent;
    }

    /// The child on the other side takes the cell's place, the cell goes down to this side.
    void rotate(Cell* cell, bool toLeft)
    {
        Cell* child = toLeft ? cell->right : cell->left;
        Cell* inner = toLeft ? child->left : child->right;
        replaceChild(cell->parent, cell, child);
        (toLeft ? cell->right : cell->left) = inner;
        if (inner) inner->parent = cell;
        (toLeft ? child->left : child->right) = cell;
        cell->parent = child;
    }

    void balanceInsertion(Cell* cell)
    {
        while (isRed(cell->parent)) {
            Cell *parent = cell->parent, *grandparent = parent->parent;
            bool onLeft = grandparent->left == parent;
            Cell* uncle = onLeft ? grandparent->right : grandparent->left;
            if (isRed(uncle)) {
                parent->color = uncle->color = Black;
                grandparent->color = Red;
                cell = grandparent;
                continue;
            }
            bool innerChild = (parent->left == cell) != onLeft;
            if (innerChild) {
                rotate(parent, onLeft);
                parent = cell;
            }
            rotate(grandparent, !onLeft);
            parent->color = Black;
            grandparent->color = Red;
            break;
        }
        root->color = Black;
    }

    void remove(Cell* cell)
    {
        if (cursor == cell) cursor = nullptr;
        if (cell->left && cell->right) exchange(cell, leftmost(cell->right));
        Cell* child = cell->left ? cell->left : cell->right;
        Cell* parent = cell->parent;
        replaceChild(parent, cell, child);
        if (cell->color == Black) balanceRemoval(child, parent);
        --elements;
        freeCell(cell);
    }

    /// Two cells trade places in the tree, not contents: pointers to other cells stay valid.
    void exchange(Cell* cell, Cell* next)
    {
        Cell *nextParent = next->parent, *nextRight = next->right;
        replaceChild(cell->parent, cell, next);
        next->left = cell->left;
        next->left->parent = next;
        if (nextParent == cell) {
            next->right = cell;
            cell->parent = next;
        } else {
            next->right = cell->right;
            next->right->parent = next;
            nextParent->left = cell;
            cell->parent = nextParent;
        }
        cell->left = nullptr;
        cell->right = nextRight;
        if (nextRight) nextRight->parent = cell;
        std::swap(cell->color, next->color);
    }

    /// Makes good for a black cell that is missing above the given one (which may be null).
    void balanceRemoval(Cell* cell, Cell* parent)
    {
        while (parent && !isRed(cell)) {
            bool onLeft = parent->left == cell;
            Cell* sibling = onLeft ? parent->right : parent->left;
            if (isRed(sibling)) {
                sibling->color = Black;
                parent->color = Red;
                rotate(parent, onLeft);
                sibling = onLeft ? parent->right : parent->left;
            }
            Cell *outer = onLeft ? sibling->right : sibling->left, *inner = onLeft ? sibling->left : sibling->right;
            if (!isRed(outer) && !isRed(inner)) {
                sibling->color = Red;
                cell = parent;
                parent = cell->parent;
                continue;
            }
            if (!isRed(outer)) {
                inner->color = Black;
                sibling->color = Red;
                rotate(sibling, !onLeft);
                outer = sibling;
                sibling = inner;
            }
            sibling->color = parent->color;
            parent->color = Black;
            outer->color = Black;
            rotate(parent, onLeft);
            return;
        }
        if (cell) cell->color = Black;
    }

    Cell* freeCells = nullptr; // chained by right; used before a block grows
};

} // namespace ZALM
