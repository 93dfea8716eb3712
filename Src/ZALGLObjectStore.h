// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALMetalLog.h"
#include "foundation/Map.h"

#include <cstdint>
#include <new>

/// Objects of one kind by GL name. The store owns them; names count up and are never used again.
template <class T>
class ZALGLObjectStore
{
public:
    ~ZALGLObjectStore()
    {
        for (auto* cell = objects.begin(); cell; cell = objects.next())
            Destroy(cell->value);
    }

    /// The object, or null for a name that has none.
    T* Find(uint32_t name)
    {
        auto* cell = objects.find(name);
        return cell ? cell->value : nullptr;
    }

    void Generate(int32_t count, uint32_t* names)
    {
        for (int32_t i = 0; i < count; ++i)
            names[i] = nextName == 0 ? 0 : Create();
    }

    /// Destroys the object; an unknown name is passed over.
    void Delete(uint32_t name)
    {
        auto* cell = objects.find(name);
        if (!cell) return;
        Destroy(cell->value);
        objects.erase(name);
    }

    ZALM::Map<uint32_t, T*> objects;
    uint32_t nextName = 1; // 0 once the counter has wrapped

private:
    uint32_t Create()
    {
        uint32_t name = nextName++;
        auto* object = new (std::nothrow) T;
        if (!object) return 0;
        ++ZALMetal::g_counters.objects;
        bool inserted = false;
        if (objects.insert(inserted, name, object) == ZALM::Success && inserted) return name;
        Destroy(object);
        return 0;
    }

    static void Destroy(T* object)
    {
        --ZALMetal::g_counters.objects;
        delete object;
    }
};
