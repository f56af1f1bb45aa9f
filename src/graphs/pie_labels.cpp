#include "graphs/pie_labels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvo {
namespace {

/// Arcs are drawn as straight lines of this many radians, which is not seen.
constexpr double kArcStep = 0.05;

/// Neighbours that touched, moved together: they stand one below the other, as near to where they want to as may be.
struct Cluster {
  double sum = 0;  ///< of where its first line would be for each of its labels alone
  std::size_t count = 0;
  double first() const { return sum / static_cast<double>(count); }
};

/// Moves heights, in rising order, apart to the distance of a line, each as little as possible.
void SpreadOut(std::vector<PieLabelPlace>* places, const PieShape& pie) {
  const double line = pie.line_height;
  std::vector<Cluster> clusters;
  for (const PieLabelPlace& place : *places) {
    clusters.push_back({place.y, 1});
    while (clusters.size() > 1) {
      Cluster& below = clusters.back();
      Cluster& above = clusters[clusters.size() - 2];
      const double above_length = static_cast<double>(above.count) * line;
      if (above.first() + above_length <= below.first()) break;
      above.sum += below.sum - static_cast<double>(below.count) * above_length;
      above.count += below.count;
      clusters.pop_back();
    }
  }
  std::size_t at = 0;
  for (const Cluster& cluster : clusters) {
    for (std::size_t i = 0; i < cluster.count; ++i) {
      (*places)[at++].y = cluster.first() + static_cast<double>(i) * line;
    }
  }
  // Whoever was pushed out of the picture pushes back; there is room for all.
  double least = pie.top + line / 2;
  for (PieLabelPlace& place : *places) least = (place.y = std::max(place.y, least)) + line;
  double most = pie.bottom - line / 2;
  for (auto place = places->rbegin(); place != places->rend(); ++place) {
    most = (place->y = std::min(place->y, most)) - line;
  }
}

/// How far from the vertical through the centre a line of text at that height has to stay.
double Clearance(const PieShape& pie, double y) {
  const double circle = pie.radius + pie.gap;
  const double nearest = std::max(std::abs(y - pie.centre.y) - pie.line_height / 2, 0.0);
  return nearest < circle ? std::sqrt(circle * circle - nearest * nearest) : 0;
}

void PlaceSide(const std::vector<PieLabelWish>& wishes, const PieShape& pie, bool on_right,
               std::vector<PieLabelPlace>* all) {
  const double circle = pie.radius + pie.gap;
  std::vector<PieLabelPlace> places;
  for (std::size_t i = 0; i < wishes.size(); ++i) {
    if ((std::cos(wishes[i].angle) >= 0) != on_right) continue;
    places.push_back({.label = i, .on_right = on_right, .y = pie.centre.y + circle * std::sin(wishes[i].angle)});
  }
  const auto room = static_cast<std::size_t>(std::max((pie.bottom - pie.top) / pie.line_height, 0.0));
  while (places.size() > room) {
    places.erase(std::ranges::min_element(places, {}, [&](const auto& place) { return wishes[place.label].share; }));
  }
  std::ranges::stable_sort(places, {}, &PieLabelPlace::y);
  SpreadOut(&places, pie);
  for (PieLabelPlace& place : places) {
    const double angle = wishes[place.label].angle;
    const double wished = pie.centre.y + circle * std::sin(angle);
    const double reach = std::max(Clearance(pie, place.y), circle * std::abs(std::cos(angle)));
    place.moved = std::abs(place.y - wished) > pie.line_height / 3;
    place.x = pie.centre.x + (on_right ? reach : -reach);
  }
  all->insert(all->end(), places.begin(), places.end());
}

}  // namespace

std::vector<PieLabelPlace> PlacePieLabels(const std::vector<PieLabelWish>& wishes, const PieShape& pie) {
  std::vector<PieLabelPlace> all;
  for (bool on_right : {true, false}) PlaceSide(wishes, pie, on_right, &all);
  return all;
}

std::vector<PointF> LeaderLine(const PieShape& pie, double angle, PointF end) {
  const double circle = pie.radius + pie.gap / 2;
  auto on_ray = [&](double at, double distance) -> PointF {
    return {pie.centre.x + distance * std::cos(at), pie.centre.y + distance * std::sin(at)};
  };
  const double dx = end.x - pie.centre.x;
  const double dy = end.y - pie.centre.y;
  // From the end, a straight line touches the circle this far from the ray to the end.
  const double in_sight = std::acos(circle / std::max(std::hypot(dx, dy), circle));
  const double turn = std::remainder(std::atan2(dy, dx) - angle, 2 * std::numbers::pi);
  const double round = std::max(std::abs(turn) - in_sight, 0.0);
  const int steps = static_cast<int>(std::ceil(round / kArcStep));  // at most those of half a circle
  std::vector<PointF> line{on_ray(angle, pie.radius + 1), on_ray(angle, circle)};
  for (int step = 1; step <= steps; ++step) {
    line.push_back(on_ray(angle + std::copysign(round * step / steps, turn), circle));
  }
  line.push_back(end);
  return line;
}

}  // namespace orvo
