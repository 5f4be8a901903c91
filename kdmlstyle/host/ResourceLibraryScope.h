// The frame around every command of the module: while it lives, the
// command-time resource library is loaded and is the source of resource
// strings (and later of dialog templates and bitmaps).
#pragma once

namespace kdml {

class ResourceLibraryScope {
public:
    // Loads the library by bare name (searched beside the module first) and,
    // when it loaded, makes it the current resource library.
    ResourceLibraryScope();
    // Puts the previous resource library back and frees the loaded one.
    ~ResourceLibraryScope();
    ResourceLibraryScope(const ResourceLibraryScope&) = delete;
    ResourceLibraryScope& operator=(const ResourceLibraryScope&) = delete;

    // False when the library could not be loaded: the command then does
    // nothing and says nothing.
    bool isLoaded() const { return library_ != nullptr; }
    void* library() const { return library_; }

private:
    void* library_ = nullptr;
    void* previous_ = nullptr;
};

}  // namespace kdml
