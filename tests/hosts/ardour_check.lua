-- Loads the session again and compares it with what was made. Saves it as "bypassed" with all effects but the last switched
-- off, and so without automation as "plain".
-- `session` and `effects` stand in front of this.

local backend = AudioEngine:set_backend("None (Dummy)", "", "")
backend:set_device_name("Silence")
backend:set_sample_rate(48000)
backend:set_buffer_size(512)
local s = assert(load_session(session, "session"))
local track = s:route_by_name("Noise")

for place, effect in ipairs(effects) do
    local processor = track:nth_plugin(place - 1)
    assert(not processor:isnil(), effect.uri .. " is gone")
    local plugin = processor:to_insert():plugin(0)
    assert(plugin:unique_id() == effect.uri, plugin:unique_id() .. " in place of " .. effect.uri)
    for i = 0, plugin:parameter_count() - 1 do
        if plugin:parameter_is_input(i) and plugin:parameter_label(i) == effect.label then
            local control = processor:to_insert():to_automatable():automation_control(
                Evoral.Parameter(ARDOUR.AutomationType.PluginAutomation, 0, i), true)
            local value = control:get_value()
            local close = 1e-4 * math.max(1, math.abs(effect.value))
            if place < #effects and math.abs(value - effect.value) > close then
                print(effect.uri .. ": " .. effect.label .. " is " .. value .. ", not " .. effect.value)
            end
        end
    end
    if place < #effects then processor:deactivate() end
end
assert(track:nth_plugin(#effects):isnil())
s:save_state("bypassed", false, false, false, false, false)
local last = track:nth_plugin(#effects - 1)
for i = 0, last:to_insert():plugin(0):parameter_count() - 1 do
    local control = last:to_insert():to_automatable():automation_control(
        Evoral.Parameter(ARDOUR.AutomationType.PluginAutomation, 0, i), false)
    if not control:isnil() then control:set_automation_state(ARDOUR.AutoState.Off) end
end
s:save_state("plain", false, false, false, false, false)
close_session()
print("checked")
