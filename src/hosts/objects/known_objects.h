// Keeps track of the objects of collections, so that clients have one object for one collection however they get it.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

namespace tessarlorn {

/// The objects of one kind of collection that clients hold. Any thread.
template <typename CollectionObject, typename Collection>
class KnownObjects {
 public:
  static KnownObjects& Instance() {
    static KnownObjects known;
    return known;
  }

  /// The collection's object, a new one where nobody holds one.
  std::shared_ptr<CollectionObject> Of(const std::shared_ptr<Collection>& collection) {
    const std::scoped_lock lock(mutex_);
    std::weak_ptr<CollectionObject>& known = objects_[collection.get()];
    std::shared_ptr<CollectionObject> object = known.lock();
    if (object == nullptr) {
      object = std::make_shared<CollectionObject>(collection);
      known = object;
    }
    return object;
  }
  /// To be called when an object of the collection goes. Another one may have taken its place.
  void Forget(const Collection* collection) {
    const std::scoped_lock lock(mutex_);
    const auto found = objects_.find(collection);
    if (found != objects_.end() && found->second.expired()) objects_.erase(found);
  }

 private:
  std::mutex mutex_;
  std::unordered_map<const Collection*, std::weak_ptr<CollectionObject>> objects_;
};

}  // namespace tessarlorn
