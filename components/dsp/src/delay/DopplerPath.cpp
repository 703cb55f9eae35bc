#include "qoc/dsp/delay/DopplerPath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qoc::dsp {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kRadiansPerDegree = kTurn / 360;

} // namespace

DopplerPath::DopplerPath(const Shape& shape)
    : fShape(shape), fAngle(shape.angle * kRadiansPerDegree), fDirectionFront(std::cos(fAngle)),
      fDirectionRight(std::sin(fAngle)) {
    fShape.velocity = std::min(fShape.velocity, kGreatestVelocity);
    fAngularSpeed = fShape.velocity / fShape.distance;
}

DopplerPath::Position DopplerPath::At(double time) const noexcept {
    Position position;
    double velocityFront = -fShape.velocity * fDirectionFront;
    double velocityRight = -fShape.velocity * fDirectionRight;
    if (fShape.circular) {
        const double angle = fAngle + fAngularSpeed * time;
        const double front = std::cos(angle);
        const double right = std::sin(angle);
        position.front = fShape.front + fShape.distance * front;
        position.right = fShape.right + fShape.distance * right;
        velocityFront = -fShape.velocity * right;
        velocityRight = fShape.velocity * front;
    } else {
        position.front = fShape.front + fShape.distance * fDirectionFront + velocityFront * time;
        position.right = fShape.right + fShape.distance * fDirectionRight + velocityRight * time;
    }
    position.distance = std::sqrt(position.front * position.front + position.right * position.right);
    if (position.distance > 0)
        position.radialVelocity = (position.front * velocityFront + position.right * velocityRight) / position.distance;
    return position;
}

double DopplerPath::NearestDistance(double until) const noexcept {
    const double nearest = TimeOfNearest();
    const double ends = std::min(DistanceAt(0), DistanceAt(until));
    return nearest >= 0 && nearest <= until ? std::min(ends, DistanceAt(nearest)) : ends;
}

// The first moment from 0 on at which the source is nearest, were the path endless.
double DopplerPath::TimeOfNearest() const noexcept {
    if (!fShape.circular) {
        const double along = fShape.front * fDirectionFront + fShape.right * fDirectionRight;
        return (fShape.distance + along) / fShape.velocity;
    }
    // Nearest where the listener lies in the same direction from the centre.
    const double toListener = std::atan2(-fShape.right, -fShape.front);
    double swept = std::fmod(toListener - fAngle, kTurn);
    if (swept < 0) swept += kTurn;
    return swept / fAngularSpeed;
}

} // namespace qoc::dsp
