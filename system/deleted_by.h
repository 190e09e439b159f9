#pragma once

// A function as the deleter of a std::unique_ptr, which stays as small as a pointer. What the
// function returns isn't looked at.
template <auto function>
struct DeletedBy {
    template <typename Object>
    void operator()(Object* object) const {
        function(object);
    }
};
