// Assessments of waveforms and records.  The functions return plain tuples; the classes that people
// see are Python's.
#include "assessment.h"

#include <pybind11/stl.h>

#include <cmath>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "analysis/resample.h"
#include "analysis/shock.h"
#include "array_view.h"
#include "assess/entries.h"
#include "assess/judgement.h"
#include "assess/machine.h"
#include "assess/motion.h"
#include "assess/report.h"
#include "assess/requirement.h"
#include "assess/spectrum.h"
#include "assess/synthesis.h"
#include "definition/definition.h"
#include "python_error.h"
#include "waveform.h"

namespace qarv::python {

namespace py = pybind11;

namespace {

/// Results as (key, label, value, unit).
py::list EntriesOf(const assess::Entries& entries) {
  py::list out;
  for (const assess::Entry& entry : entries) {
    const py::object value = std::visit([](const auto& v) { return py::cast(v); },
                                        static_cast<const assess::AnyValue&>(entry.value));
    out.append(py::make_tuple(entry.key, entry.label, value, entry.unit));
  }
  return out;
}

/// Runs an assessment without the lock; what keeps it from a result is raised.
template <class Work>
auto Assessed(Work work) {
  try {
    const py::gil_scoped_release others;
    return work();
  } catch (const assess::Error& e) {
    RaiseNoResult(e);
  }
}

void RequireBands(const Waveform& waveform) {
  if (definition::HasBands(waveform.def)) return;
  throw py::value_error("the waveform has no bands of its length");
}

// ---- Motion ------------------------------------------------------------------------------------

/// Velocity and displacement, their units, and the five extremes of the motion.
py::tuple MotionTuple(const wave_def::CWaveDef& def) {
  const auto [kinematics, motion, units] = Assessed([&] {
    return std::tuple(
        assess::KinematicsOf(def),
        analysis::MotionOf(definition::SpanOf(def.GetWave()), definition::SampleRateOf(def)),
        assess::MotionUnitsOf(def.GetUnitAmpl().GetText()));
  });
  return py::make_tuple(
      ArrayOf(definition::SpanOf(kinematics.velocity)),
      ArrayOf(definition::SpanOf(kinematics.displacement)), kinematics.velocityUnit,
      kinematics.displacementUnit, units.velocity * motion.peakVelocity,
      units.displacement * motion.peakDisplacement,
      units.displacement * motion.peakToPeakDisplacement, units.velocity * motion.residualVelocity,
      units.displacement * motion.residualDisplacement);
}

/// An acceleration is a measured waveform that nobody has bands for.
py::tuple MotionOfSamples(py::handle acceleration, double fsamp, const std::string& unit) {
  const DoubleArray samples = SamplesIn(acceleration, "acceleration");
  common::CUnitCtrl amplitude;
  if (!common::CUnitCtrl::FromText(unit, &amplitude)) {
    throw py::value_error("unit: is not a known unit");
  }
  if (!(fsamp > 0.0 && std::isfinite(fsamp))) {
    throw py::value_error("fsamp: is not a positive number");
  }
  wave_def::CWaveDef def;
  def.SetFsamp(fsamp);
  def.SetUnitAmpl(amplitude);
  common::CDataArrayFloatT<double> values;
  values.SetData(static_cast<common::uint64>(samples.size()), samples.data(), false);
  def.SetDefMeasure({}, values);
  return MotionTuple(def);
}

// ---- Spectrum ----------------------------------------------------------------------------------

/// The frequencies and the four responses of every line, and what they are.
py::tuple SpectrumTuple(py::handle acceleration, double fsamp, const std::string& unit,
                        const assess::SpectrumSettings& settings) {
  const DoubleArray samples = SamplesIn(acceleration, "acceleration");
  const assess::Record record{SpanOf(samples), fsamp, unit};
  const assess::Spectrum spectrum = Assessed([&] { return assess::SpectrumOf(record, settings); });
  const auto column = [&](auto valueOf, double factor) {
    std::vector<double> values;
    values.reserve(spectrum.points.size());
    for (const analysis::SrsPoint& point : spectrum.points) {
      values.push_back(factor * valueOf(point));
    }
    return ArrayOf(values);
  };
  const double factor = spectrum.factor;
  using Point = analysis::SrsPoint;
  return py::make_tuple(column([](const Point& p) { return p.frequency; }, 1.0),
                        column([](const Point& p) { return p.primary.positive; }, factor),
                        column([](const Point& p) { return p.primary.negative; }, factor),
                        column([](const Point& p) { return p.residual.positive; }, factor),
                        column([](const Point& p) { return p.residual.negative; }, factor),
                        spectrum.response, spectrum.unit, spectrum.zeta,
                        assess::IsCoarse(spectrum, fsamp));
}

// ---- Synthesis ---------------------------------------------------------------------------------

std::optional<assess::Machine> MachineOf(const std::optional<std::string>& text) {
  if (!text) return {};
  return assess::MachineFromJson(*text);
}

/// Tells a function of the caller's how far the work is, and sees to what the user has interrupted.
class Teller {
 public:
  explicit Teller(py::object function) : function_(std::move(function)) {}

  /// Takes the lock.
  bool Tell(double share) {
    const py::gil_scoped_acquire lock;
    try {
      if (PyErr_CheckSignals() != 0) throw py::error_already_set();
      if (function_.is_none()) return true;
      const py::object answer = function_(share);
      return answer.is_none() || answer.cast<bool>();
    } catch (...) {
      raised_ = std::current_exception();
      return false;
    }
  }
  /// Raises what the function has raised.
  void Raise() const {
    if (raised_) std::rethrow_exception(raised_);
  }

 private:
  py::object function_;
  std::exception_ptr raised_;
};

py::tuple DeviationTuple(const synthesis::SrsDeviation& d) {
  return py::make_tuple(d.worst, d.worstFrequency, d.rms, d.lines, d.inside);
}

/// The waveform, its deviations on the lines and in between, why it is not what was asked for, the
/// figures, and the warnings; None where it was cancelled.
py::object SynthesisTuple(const std::string& requirement, const std::optional<std::string>& machine,
                          const assess::SynthesisRequest& request, const py::object& progress) {
  Teller teller(progress);
  assess::Synthesis made = Assessed([&] {
    return assess::Synthesize(assess::RequirementFromJson(requirement), request, MachineOf(machine),
                              [&](double share) { return teller.Tell(share); });
  });
  teller.Raise();
  if (made.IsCancelled()) return py::none();
  auto waveform = std::make_unique<Waveform>();
  waveform->def = std::move(made.wave);
  const synthesis::SrsComparison& c = made.result.comparison;
  return py::make_tuple(std::move(waveform), DeviationTuple(c.onGrid), DeviationTuple(c.between),
                        made.failure, EntriesOf(made.entries), assess::AsText(made.entries),
                        made.warnings);
}

// ---- Verdict -----------------------------------------------------------------------------------

/// Whether it passes, what fails, the record on the definition's samples and which of them it
/// covers, every number, and the warnings.
py::tuple JudgementTuple(const Waveform& waveform, py::handle measured, double fsamp,
                         const std::string& unit, double begin, double dvTol, bool force) {
  RequireBands(waveform);
  const DoubleArray samples = SamplesIn(measured, "record");
  const assess::Record record{SpanOf(samples), fsamp, unit, begin};
  const assess::Judgement judgement = Assessed(
      [&] { return assess::Judge(waveform.def, record, {.dvTol = dvTol, .force = force}); });
  const assess::Overlay& overlay = judgement.overlay;
  return py::make_tuple(judgement.Passes(), judgement.Failed(),
                        ArrayOf(definition::SpanOf(overlay.wave)), overlay.first, overlay.last,
                        EntriesOf(judgement.entries), judgement.warnings,
                        assess::AsText(judgement.entries), judgement.correlation);
}

/// The values at start, start + step, ...
py::array SampledAt(py::handle x, double start, double step, std::size_t count) {
  const DoubleArray samples = SamplesIn(x, "samples");
  if (samples.size() == 0) throw py::value_error("samples: is empty");
  if (!std::isfinite(start)) throw py::value_error("start: is no finite number");
  if (!(step > 0.0 && std::isfinite(step))) throw py::value_error("step: is not above 0");
  return ArrayOf(
      Assessed([&] { return analysis::SampledAt(SpanOf(samples), start, step, count); }));
}

}  // namespace

void BindAssessment(py::module_& module) {
  module.def("motion_of_waveform", [](const Waveform& w) { return MotionTuple(w.def); });
  module.def("motion_of_samples", &MotionOfSamples);
  module.def("spectrum", [](py::handle acceleration, double fsamp, const std::string& unit,
                            const std::string& response, double q, std::optional<double> damping,
                            std::optional<double> from, std::optional<double> to, double perOctave,
                            std::optional<int> points) {
    return SpectrumTuple(acceleration, fsamp, unit,
                         {response, q, damping, from, to, perOctave, points});
  });
  module.def("synthesize",
             [](const std::string& requirement, const std::optional<std::string>& machine,
                const std::string& shape, const std::string& method, const std::string& minimize,
                double within, std::uint64_t seed, bool quick, const py::object& progress) {
               return SynthesisTuple(requirement, machine,
                                     {shape, method, minimize, within, seed, quick}, progress);
             });
  module.def("report", [](const Waveform& waveform, const std::optional<std::string>& machine) {
    RequireBands(waveform);
    const assess::Entries entries =
        Assessed([&] { return assess::ReportOf(waveform.def, MachineOf(machine)); });
    return py::make_tuple(EntriesOf(entries), assess::AsText(entries));
  });
  module.def("judge", &JudgementTuple);
  module.def("sampled_at", &SampledAt);
}

}  // namespace qarv::python
