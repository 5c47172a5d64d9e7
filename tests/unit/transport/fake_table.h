// SPDX-License-Identifier: Apache-2.0
#ifndef FAKE_TABLE_H
#define FAKE_TABLE_H

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "ipc_object_stub.h"
#include "object_table.h"

namespace OHOS::Transport::Test {

/** A table that is filled by hand. An object received from the peer is a new one, which the table keeps. */
class FakeTable : public ObjectTable {
public:
    bool Pin(const sptr<RefBase>& object, uint64_t& id) override
    {
        for (const auto& [known, own] : objects) {
            if (own == object) {
                id = known;
                ++pins[id];
                return true;
            }
        }
        return false;
    }

    void Unpin(uint64_t id, uint32_t count) override { pins[id] -= static_cast<int>(count); }

    sptr<RefBase> Find(uint64_t id) override
    {
        for (const auto& [known, own] : objects) {
            if (known == id) {
                return own;
            }
        }
        return nullptr;
    }

    sptr<RefBase> Receive(uint64_t id) override
    {
        received.emplace_back(id, sptr<RefBase>(new IPCObjectStub()));
        return received.back().second;
    }

    using Objects = std::vector<std::pair<uint64_t, sptr<RefBase>>>;

    Objects objects; // Of this process.
    std::map<uint64_t, int> pins;
    Objects received;
};

} // namespace OHOS::Transport::Test

#endif // FAKE_TABLE_H
