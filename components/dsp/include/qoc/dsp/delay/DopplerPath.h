#pragma once

namespace qoc::dsp {

// The way of a sound source past or around a listener, who stands at the origin and looks towards `front`. Distances in
// metres, times in seconds from the start of the sound, angles in degrees clockwise from the front. A value.
class DopplerPath {
public:
    struct Shape {
        double distance = 1; // starting distance from the path's centre, the radius of a circle
        double velocity = 0; // metres a second
        double angle = 0;    // direction from the centre in which the source starts
        double front = 0;    // the path's centre
        double right = 0;
        bool circular = false; // clockwise on a circle, otherwise straight towards the centre and beyond

        bool operator==(const Shape&) const = default;
    };

    // Where the source is at a moment, as the listener finds it.
    struct Position {
        double front = 0;
        double right = 0;
        double distance = 0;
        double radialVelocity = 0; // by which the distance grows, metres a second
    };

    // A source as fast as sound would reach the listener all at once: a greater velocity than this is held there.
    static constexpr double kSpeedOfSound = 343; // m/s in air of 20 degrees Celsius
    static constexpr double kGreatestVelocity = 0.99 * kSpeedOfSound;

    DopplerPath() : DopplerPath(Shape()) {}
    explicit DopplerPath(const Shape& shape);

    const Shape& GetShape() const noexcept { return fShape; }
    Position At(double time) const noexcept;
    // The least distance from the listener between 0 and `until`, and the distance at `until`.
    double NearestDistance(double until) const noexcept;
    double DistanceAt(double time) const noexcept { return At(time).distance; }

private:
    double TimeOfNearest() const noexcept;

    Shape fShape;
    double fAngle;        // radians
    double fAngularSpeed; // radians a second, on a circle
    double fDirectionFront;
    double fDirectionRight;
};

} // namespace qoc::dsp
