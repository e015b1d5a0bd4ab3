// A bitmap in memory whose neighbouring pages fault on any access.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

class GuardedBitmap {
public:
    enum class Place { AT_THE_FRONT, AT_THE_BACK, AT_AN_ODD_ADDRESS };

    GuardedBitmap(std::size_t bytes, Place place)
        : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          bytes_(bytes),
          inside_((bytes + page_) / page_ * page_) {
        void* block = mmap(nullptr, inside_ + 2 * page_, PROT_NONE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (block == MAP_FAILED)
            throw std::bad_alloc();
        block_ = static_cast<std::uint8_t*>(block);
        mprotect(block_ + page_, inside_, PROT_READ | PROT_WRITE);
        const std::size_t offset = place == Place::AT_THE_BACK ? inside_ - bytes : 0;
        pixels_ = block_ + page_ + offset + (place == Place::AT_AN_ODD_ADDRESS ? 1 : 0);
    }

    GuardedBitmap(const GuardedBitmap&) = delete;
    GuardedBitmap& operator=(const GuardedBitmap&) = delete;

    ~GuardedBitmap() { munmap(block_, inside_ + 2 * page_); }

    void set(const std::vector<std::uint8_t>& bytes) {
        std::copy(bytes.begin(), bytes.end(), pixels_);
    }

    std::vector<std::uint8_t> bytes() const { return {pixels_, pixels_ + bytes_}; }

    // True while the bytes between the bitmap and its guards are as they came.
    bool is_margin_clean() const {
        const auto is_zero = [](std::uint8_t byte) { return byte == 0; };
        return std::all_of(block_ + page_, pixels_, is_zero) &&
               std::all_of(pixels_ + bytes_, block_ + page_ + inside_, is_zero);
    }

    std::uint8_t* pixels() const { return pixels_; }

private:
    std::size_t page_;
    std::size_t bytes_;
    std::size_t inside_;
    std::uint8_t* block_;
    std::uint8_t* pixels_;
};
