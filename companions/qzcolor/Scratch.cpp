#include "companions/qzcolor/Scratch.h"

#include <array>
#include <atomic>
#include <memory>
#include <new>

namespace qzcolor {

namespace {
constexpr std::align_val_t kAlignment{64};
}

struct Scratch::Block {
    explicit Block(size_t bytes) : size(bytes), memory(::operator new(bytes, kAlignment, std::nothrow)) {}
    ~Block() { ::operator delete(memory, kAlignment); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    const size_t size;
    void* const memory;
};

namespace {

class Slots {
public:
    ~Slots() {
        while (Scratch::Block* block = Take()) delete block;
    }
    // Any block that waits, or null.
    Scratch::Block* Take() {
        for (auto& slot : slots_) {
            if (Scratch::Block* block = slot.exchange(nullptr)) return block;
        }
        return nullptr;
    }
    // Where all slots are taken the block goes.
    void Put(Scratch::Block* block) {
        for (auto& slot : slots_) {
            Scratch::Block* empty = nullptr;
            if (slot.compare_exchange_strong(empty, block)) return;
        }
        delete block;
    }

private:
    static constexpr size_t kCount = 8;
    std::array<std::atomic<Scratch::Block*>, kCount> slots_ = {};
};
Slots g_slots;

}  // namespace

Scratch::Scratch(size_t bytes) {
    std::unique_ptr<Block> block(g_slots.Take());
    if (!block || block->size < bytes) block.reset(new (std::nothrow) Block(bytes));
    if (block && block->memory) block_ = block.release();
}

Scratch::~Scratch() {
    if (block_) g_slots.Put(block_);
}

uint8_t* Scratch::Bytes() const {
    return block_ ? static_cast<uint8_t*>(block_->memory) : nullptr;
}

}  // namespace qzcolor
