-- Makes a session: a track with a second of noise, all effects on it, each with a setting, and the last one automated.
-- `session`, `effects` (each with uri, label, value) and `automated` (label, length, to) stand in front of this.

local backend = AudioEngine:set_backend("None (Dummy)", "", "")
backend:set_device_name("Pink Noise (low CPU)")
backend:set_sample_rate(48000)
backend:set_buffer_size(512)
local s = assert(create_session(session, "session", 48000))
local track = s:new_audio_track(2, 2, nil, 1, "Noise", -1, ARDOUR.TrackMode.Normal, true):front()

track:rec_enable_control():set_value(1, PBD.GroupControlDisposition.NoGroup)
s:maybe_enable_record()
s:request_roll(ARDOUR.TransportRequestSource.TRS_UI)
for _ = 1, 100 do
    if s:transport_sample() > 60000 then break end
    ARDOUR.LuaAPI.usleep(50000)
end
s:request_stop(false, false, ARDOUR.TransportRequestSource.TRS_UI)
ARDOUR.LuaAPI.usleep(500000) -- until the recording is a region
track:rec_enable_control():set_value(0, PBD.GroupControlDisposition.NoGroup)

local function port(processor, label)
    local plugin = processor:to_insert():plugin(0)
    for i = 0, plugin:parameter_count() - 1 do
        if plugin:parameter_is_input(i) and plugin:parameter_label(i) == label then return i end
    end
    error(plugin:name() .. " has no port " .. label)
end

local function automate(processor)
    local parameter = Evoral.Parameter(ARDOUR.AutomationType.PluginAutomation, 0, port(processor, automated.label))
    local control = processor:to_insert():to_automatable():automation_control(parameter, true)
    local list = control:alist():list()
    list:add(Temporal.timepos_t(0), 0, false, true)
    list:add(Temporal.timepos_t(automated.length), automated.to, false, true)
    control:set_automation_state(ARDOUR.AutoState.Play)
end

for place, effect in ipairs(effects) do
    local processor = ARDOUR.LuaAPI.new_plugin(s, effect.uri, ARDOUR.PluginType.LV2, "")
    assert(not processor:isnil(), effect.uri)
    assert(track:add_processor_by_index(processor, place - 1, nil, true) == 0, effect.uri)
    local plugin = processor:to_insert():plugin(0)
    local index = port(processor, effect.label)
    processor:to_insert():to_automatable():automation_control(
        Evoral.Parameter(ARDOUR.AutomationType.PluginAutomation, 0, index), true):set_value(
        effect.value, PBD.GroupControlDisposition.NoGroup)
    if place == #effects then automate(processor) end
end
s:save_state("", false, false, false, false, false)
close_session()
print("made")
