#include "kaldo/ui/SceneBuilder.h"

#include <utility>

namespace kaldo::ui {

PublishedDrawing publishedScene(std::shared_ptr<const view::Scene> scene)
{
    PublishedDrawing drawing;
    drawing.index = std::make_shared<const view::SceneIndex>(*scene);
    drawing.snaps = std::make_shared<const SnapGeometry>(scene, drawing.index);
    drawing.fills = std::make_shared<const view::FillColors>(view::fillColors(*scene));
    drawing.bounds = scene->bounds();
    drawing.scene = std::move(scene);
    return drawing;
}

SceneBuilder::SceneBuilder(Finished finished) : finished_(std::move(finished))
{
    thread_ = std::thread([this] { run(); });
}

SceneBuilder::~SceneBuilder()
{
    {
        std::lock_guard lock(mutex_);
        closing_ = true;
        holdAfter_ = 0;
    }
    changed_.notify_all();
    thread_.join();
}

void SceneBuilder::start(const DrawingState& state, const KxDbDatabase& db, view::TextStyleFonts fonts)
{
    std::unique_lock lock(mutex_);
    dropReading(lock);
    next_ = Job{state, &db, std::move(fonts)};
    granted_ = true;
    changed_.notify_all();
}

bool SceneBuilder::building(const DrawingState& state)
{
    std::lock_guard lock(mutex_);
    return (phase_ != Phase::Idle && current_ == state) || (next_ && next_->state == state);
}

void SceneBuilder::pause()
{
    std::unique_lock lock(mutex_);
    granted_ = false;
    changed_.wait(lock, [this] { return phase_ != Phase::Reading; });
}

void SceneBuilder::stop()
{
    std::unique_lock lock(mutex_);
    granted_ = false;
    next_.reset();
    dropReading(lock);
}

void SceneBuilder::resume()
{
    {
        std::lock_guard lock(mutex_);
        granted_ = true;
    }
    changed_.notify_all();
}

void SceneBuilder::holdBuildsAfter(std::size_t entities)
{
    std::lock_guard lock(mutex_);
    holdAfter_ = entities;
}

void SceneBuilder::releaseHeldBuilds()
{
    {
        std::lock_guard lock(mutex_);
        holdAfter_ = 0;
    }
    changed_.notify_all();
}

bool SceneBuilder::holding()
{
    std::lock_guard lock(mutex_);
    return holding_;
}

void SceneBuilder::dropReading(std::unique_lock<std::mutex>& lock)
{
    if (phase_ != Phase::Reading && phase_ != Phase::Parked)
        return;
    dropping_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return phase_ != Phase::Reading && phase_ != Phase::Parked; });
    dropping_ = false;
}

void SceneBuilder::between()
{
    std::unique_lock lock(mutex_);
    read_ += view::kEntitiesBetween;
    while (true) {
        if (dropping_ || closing_) {
            holding_ = false;
            throw Stopped();
        }
        holding_ = holdAfter_ != 0 && read_ >= holdAfter_;
        if (granted_ && !holding_)
            break;
        phase_ = Phase::Parked;
        changed_.notify_all();
        changed_.wait(lock);
    }
    phase_ = Phase::Reading;
}

SceneBuilder::Built SceneBuilder::build(const Job& job)
{
    Built built;
    built.state = job.state;
    try {
        auto scene = std::make_shared<const view::Scene>(view::renderDrawing(
            *job.db, &built.notes, view::PointBudget::kPicture, job.fonts, false, [this] { between(); }));
        {
            std::lock_guard lock(mutex_);
            phase_ = Phase::Indexing;
        }
        changed_.notify_all();
        built.drawing = publishedScene(std::move(scene));
    } catch (const Stopped&) {
        throw;
    } catch (...) {
        built.failure = std::current_exception();
    }
    return built;
}

void SceneBuilder::run()
{
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return closing_ || (next_ && granted_); });
        if (closing_)
            return;
        const Job job = std::move(*next_);
        next_.reset();
        current_ = job.state;
        phase_ = Phase::Reading;
        read_ = 0;
        lock.unlock();
        std::optional<Built> built;
        try {
            built = build(job);
        } catch (const Stopped&) {
        }
        lock.lock();
        phase_ = Phase::Idle;
        current_.reset();
        changed_.notify_all();
        if (built) {
            lock.unlock();
            finished_(std::move(*built));
            lock.lock();
        }
    }
}

}  // namespace kaldo::ui
