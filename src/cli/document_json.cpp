// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/document_json.h"

#include "cli/json.h"

namespace plumetta {
namespace {

void writeMarkers(JsonWriter& json, const CMarkerList& markers) {
  json.key("markers").beginArray();
  for (const Marker& marker : markers) {
    json.beginObject().key("id").value(marker.id).key("position").value(marker.position).key("label");
    if (marker.label) {
      json.value(*marker.label);
    } else {
      json.null();
    }
    json.endObject();
  }
  json.endArray();
}

void writeLoops(JsonWriter& json, const CLoopPoints& loops) {
  json.key("loops").beginArray();
  for (int i = 0; i < loops.count(); ++i) {
    const LoopRecord loop = loops.loop(i);
    json.beginObject().key("start").value(loop.start).key("end").value(loop.end);
    json.key("type").value(loop.type).key("play_count").value(loop.playCount).endObject();
  }
  json.endArray().key("unity_note").value(loops.header.midiUnityNote);
}

void writeEnvelope(JsonWriter& json, const CVolumeEnvelope& envelope) {
  json.key("envelope");
  if (!envelope.active()) {
    json.null();
    return;
  }
  json.beginObject().key("length").value(envelope.length()).key("channels").beginArray();
  for (int channel = 0; channel < envelope.channelCount(); ++channel) {
    json.beginArray();
    for (int i = 0; i < envelope.pointCount(channel); ++i) {
      const EnvelopePoint point = envelope.point(i, channel);
      json.beginObject().key("position").value(point.position).key("value").value(point.value);
      json.key("kind").value(static_cast<int>(point.kind)).endObject();
    }
    json.endArray();
  }
  json.endArray().endObject();
}

void writeClipboard(JsonWriter& json, const CWave* clipboard) {
  json.key("clipboard");
  if (clipboard == nullptr) {
    json.null();
    return;
  }
  json.beginObject().key("channels").value(clipboard->channels()).key("rate").value(clipboard->sampleRate());
  json.key("bits").value(clipboard->bitsPerSample()).key("frames").value(clipboard->frames()).endObject();
}

}  // namespace

std::string documentJson(const CPlumettaDoc& doc, const Application& app) {
  const CWave& wave = doc.wave();
  JsonWriter json;
  json.beginObject().key("file").value(wave.fileName()).key("title").value(doc.title());
  json.key("format_tag").value(static_cast<int>(wave.formatTag())).key("channels").value(wave.channels());
  json.key("rate").value(wave.sampleRate()).key("bits").value(wave.bitsPerSample());
  json.key("frames").value(wave.frames());
  json.key("selection")
      .beginArray()
      .value(doc.view().selectionStart)
      .value(doc.view().selectionEnd)
      .endArray();
  json.key("cursor").value(doc.view().cursor).key("active").beginArray();
  for (int channel = 0; channel < wave.channels(); ++channel) json.value(wave.isActive(channel) ? 1 : 0);
  json.endArray().key("modified").value(doc.modified());
  json.key("can_undo").value(doc.journal().canUndo()).key("can_redo").value(doc.journal().canRedo());
  writeMarkers(json, wave.markers);
  writeLoops(json, wave.loops);
  writeEnvelope(json, wave.envelope);
  json.key("extra_chunks").beginArray();
  for (const Chunk& chunk : wave.extraChunks) {
    json.beginObject().key("id").value(std::string_view(chunk.id.data(), chunk.id.size()));
    json.key("size").value(static_cast<int64_t>(chunk.data.size())).endObject();
  }
  json.endArray();
  writeClipboard(json, app.clipboard());
  json.key("documents").value(static_cast<int64_t>(app.documents().size())).endObject();
  return json.text();
}

}  // namespace plumetta
