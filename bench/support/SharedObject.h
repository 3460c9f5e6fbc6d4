// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A mapped POSIX shared-memory object.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

/// Owns a mapping, and the object's name if it created it. Throws std::system_error where the system refuses.
class SharedObject {
public:
    enum class Access { Create, Read, ReadWrite };

    /// Create makes an empty object, in place of a former one of that name; its bytes are zero.
    SharedObject(std::string name, std::size_t size, Access access);
    ~SharedObject();
    SharedObject(SharedObject const&) = delete;
    SharedObject& operator=(SharedObject const&) = delete;

    void* data() const { return data_; }
    std::string const& name() const { return name_; }

private:
    std::string name_;
    std::size_t size_;
    bool owner_;
    void* data_ = nullptr;
};

} // namespace bench
