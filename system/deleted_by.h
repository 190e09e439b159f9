#pragma once

// Makes a function the deleter of a std::unique_ptr, which stays as small as a pointer. The
// function's result is ignored.
template <auto function>
struct DeletedBy {
    template <typename Object>
    void operator()(Object* object) const {
        function(object);
    }
};
