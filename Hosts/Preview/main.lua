-- Draws the effect's sliders over mpv's picture, lets keys and the mouse move them, and has the effect follow: what the
-- window shows is the plug-in's own. The choice goes to standard output as options of ombrique-render.
local utils = require 'mp.utils'
-- Written by the build from the plug-in's declaration. Below, each gets its `value`, and `keys`: for a shot, values
-- by the number of their frame.
local sliders = require 'sliders'

local path, frames, at -- the file; of a shot, the numbers of all frames, in their order, and that of the shown one
local keyNumbers = {} -- the numbers of the frames with keys, ascending
local selected, dragging, uncorrected, fullSize = 1, false, false, false
local printed = "" -- the choice that was printed last; at first, no change

local function fail(status, words)
    io.stderr:write(words and "ombrique-preview: " .. words .. "\n" or "")
    fail = function() end -- what follows from it isn't told
    mp.command("quit " .. status)
end

-- Lists the files of a shot for mpv to read. Patterns are understood as by ombrique-render: "#" goes before "%" before
-- "@", and the last place of a name before others.
local listFile = os.tmpname()
local function listShot()
    local folder, name = utils.split_path(path)
    local before, place, after = name:match("^(.-)(#+)([^#]*)$")
    if not before then before, place, after = name:match("^(.*)(%%0?[1-9]?d)(.*)$") end
    if not before then before, place, after = name:match("^(.-)(@+)([^@]*)$") end
    local format = place and place:gsub("^[#@]+$", function(signs) return "%0" .. #signs .. "d" end)
    local list = io.open(listFile, "w")
    for _, file in ipairs(place and utils.readdir(folder, "files") or {}) do
        local number = tonumber(file:sub(#before + 1, -#after - 1):match("^%d+$"))
        if number and before .. format:format(number) .. after == file then table.insert(frames, number) end
    end
    table.sort(frames)
    for _, number in ipairs(frames) do list:write(folder, "/", before, format:format(number), after, "\n") end
    list:close()
    if not frames[1] then fail(1, path .. ": no such file") end
    mp.set_property("stream-open-filename", "mf://@" .. listFile)
end

mp.add_hook("on_load", 50, function()
    path, frames = mp.get_property("stream-open-filename"), {}
    if not utils.file_info(path) then listShot() end
end)

-- A value with no more digits than its slider has, and none that say nothing.
local function describe(slider, value) return ("%.9g"):format(("%." .. slider.precision .. "f"):format(value)) end

-- The choice as options. A slider that changes nothing has none.
local function options()
    local words = ""
    for _, slider in ipairs(sliders) do
        local text, changed = describe(slider, slider.value), not keyNumbers[1] and slider.value ~= slider.default
        for i, number in ipairs(keyNumbers) do
            text = (i > 1 and text .. "," or "") .. number .. ":" .. describe(slider, slider.keys[number])
            changed = changed or slider.keys[number] ~= slider.default
        end
        words = words .. (changed and " --" .. slider.word .. " " .. text or "")
    end
    return words:sub(2)
end

local function say(words) mp.osd_message(mp.get_property("osd-ass-cc/0") .. "{\\fs11}" .. words, 8) end

local function printOptions()
    printed = options()
    io.stdout:write(printed, "\n")
    io.stdout:flush()
    say(printed == "" and "no change" or printed)
end

-- The sliders lie at the window's right: kWidth units wide from `left` on, in rows of kRow. A unit has `unit` pixels;
-- the window has at least 480 by 720 units.
local overlay, kWidth, kRow, left, unit = mp.create_osd_overlay("ass-events"), 430, 50, 0, 1
local function position(slider, value) return (value - slider.minimum) / (slider.maximum - slider.minimum) end

local function draw(state)
    local data, width, height = "", mp.get_osd_size()
    unit = math.min(width / 480, height / 720)
    left = width / unit - kWidth - 30
    mp.set_mouse_area((left - 20) * unit, 0, (left + kWidth + 20) * unit, (#sliders * kRow + 5) * unit, "sliders")
    local function put(x, y, tags, words)
        data = data .. ("{\\pos(%d,%d)\\bord0\\shad0\\q2%s}%s\n"):format(x, y, tags, words)
    end
    local function bar(x, y, w, h, c) put(x, y, "\\p1\\an5" .. c, ("m 0 0 l %d 0 %d %d 0 %d"):format(w, w, h, h)) end
    bar(left + kWidth / 2, 18 + #sliders * kRow / 2, kWidth + 40, #sliders * kRow + 36, "\\1c&H000000&\\1a&H60&")
    for i, slider in ipairs(sliders) do
        local y, colour = i * kRow - 45, i == selected and "\\1c&H40C0FF&" or ""
        put(left, y, "\\an7\\fs24" .. colour, slider.name .. "   {\\b1}" .. describe(slider, slider.value))
        put(left + kWidth, y + 6, "\\an9\\fs16", slider.range)
        bar(left + kWidth / 2, y + 36, kWidth, 2, "\\1c&H808080&")
        bar(left + kWidth * position(slider, slider.default), y + 36, 2, 18, "")
        bar(left + kWidth * position(slider, slider.value), y + 36, 10, 16, colour)
    end
    put(left, #sliders * kRow + 8, "\\an7\\fs20", state)
    overlay.res_x, overlay.res_y, overlay.data = width / unit, height / unit, data
    overlay:update()
end

-- Has the picture follow, by building the filter anew: a paused picture is drawn again only then. No other change
-- begins while that is under way.
local shown, busy = "", 0
local function show()
    local video, window = mp.get_property_native("video-dec-params"), mp.get_property_native("osd-dimensions")
    if not video or window.w == 0 then return end
    local scale = fullSize and 1 or math.min(1, window.w / video.dw, window.h / video.dh)
    local width, height = math.floor(video.w * scale + 0.5), math.floor(video.h * scale + 0.5)
    local time, rate = mp.get_property_number("time-pos"), mp.get_property_number("container-fps")
    local number = time and rate and frames[math.floor(time * rate + 0.5) + 1]
    for _, slider in ipairs(number ~= at and sliders or {}) do slider.value = slider.keys[number] or slider.value end
    at = number
    draw(("%s%d x %d%s%s    h: keys"):format(scale < 1 and "preview at " or "", width, height,
        at and ", frame " .. at or "", uncorrected and ", uncorrected" or ""))
    local positions = {}
    for i, slider in ipairs(sliders) do positions[i] = position(slider, slider.value) end
    -- In whole sixteens of pixels, since ffmpeg ignores here that it pads other rows.
    local effect = uncorrected and "null" or ("pad=%d:%d,copy,frei0r=ombrique_contrast:%s,crop=%d:%d:0:0"):format(
        math.ceil(width / 16) * 16, height, table.concat(positions, "|"), width, height)
    local graph = ("@ombrique:lavfi=[scale=%d:%d,format=rgba,%s]"):format(width, height, effect)
    if graph == shown or mp.get_time() < busy then return end
    shown, busy = graph, mp.get_time() + (mp.get_property_bool("pause") and 2 or 0.1)
    mp.set_property("geometry", window.w .. "x" .. window.h) -- or the window would take the preview's size
    if not mp.commandv("vf", "add", graph) then fail(1) end -- the effect has said why
end

local function setKey()
    if not at then return say("Keys are for the frames of a shot") end
    if not sliders[1].keys[at] then table.insert(keyNumbers, at) table.sort(keyNumbers) end
    for _, slider in ipairs(sliders) do slider.keys[at] = slider.value end
    say(options())
end

local function set(i, value)
    local slider, steps = sliders[i], 10 ^ sliders[i].precision
    value = math.max(slider.minimum, math.min(slider.maximum, value))
    slider.value, selected, uncorrected = math.floor(value * steps + 0.5) / steps, i, false
    if slider.keys[at] then setKey() end
    show()
end

local function step(i, steps) set(i, sliders[i].value + steps / 10 ^ sliders[i].precision) end

for key, steps in pairs({LEFT = -1, RIGHT = 1, ["Shift+LEFT"] = -10, ["Shift+RIGHT"] = 10}) do
    mp.add_forced_key_binding(key, key, function() step(selected, steps) end, {repeatable = true})
end
mp.add_forced_key_binding("b", "b", function(e) uncorrected = e.event ~= "up" show() end, {complex = true})
mp.set_key_bindings({
    {"up", function() selected = math.max(1, selected - 1) show() end},
    {"down", function() selected = math.min(#sliders, selected + 1) show() end},
    {"r", function() for i, slider in ipairs(sliders) do set(i, slider.default) end end},
    {"space", function() uncorrected = not uncorrected show() end},
    {"f", function() fullSize = not fullSize show() end},
    {"h", function() say(io.open(mp.get_script_directory() .. "/keys.txt"):read("*a")) end},
    {"k", setKey}, {"enter", printOptions}, {"kp_enter", printOptions}}, "keys", "force")
mp.enable_key_bindings("keys")

-- The mouse moves the slider that it is on; beside the sliders it is mpv's.
local function row() return math.max(1, math.min(#sliders, math.ceil(select(2, mp.get_mouse_pos()) / unit / kRow))) end
local function drag()
    local slider, share = sliders[selected], (mp.get_mouse_pos() / unit - left) / kWidth
    if dragging then set(selected, slider.minimum + share * (slider.maximum - slider.minimum)) end
end
mp.set_key_bindings({ -- a second function is called when the key goes down
    {"mbtn_left", function() dragging = false end, function() selected, dragging = row(), true drag() end},
    {"mbtn_left_dbl", function() set(row(), sliders[row()].default) end},
    {"wheel_up", function() step(row(), 1) end}, {"wheel_down", function() step(row(), -1) end},
}, "sliders", "force")
mp.enable_key_bindings("sliders")

mp.observe_property("mouse-pos", "native", drag)
mp.observe_property("osd-dimensions", "native", show)
mp.observe_property("time-pos", "native", show)
mp.register_event("playback-restart", function()
    if not mp.get_property("video-dec-params") then fail(1, path .. ": holds no picture") end
    busy = 0 show()
end)
-- Where a change ended without one, others wait no longer.
mp.add_periodic_timer(1, function() if busy > 0 and mp.get_time() > busy then busy = 0 show() end end)
mp.register_event("end-file", function(e)
    local words = (e.file_error or ""):gsub("^no audio or video.*", "no picture, or no display that takes a window")
    if e.reason == "error" then fail(1, path .. ": " .. words) end
end)
mp.enable_messages("error")
-- The effect has said why.
mp.register_event("log-message", function(m) if m.text:match("^Disabling filter") then fail(1) end end)
mp.register_event("shutdown", function() if options() ~= printed then printOptions() end os.remove(listFile) end)

local settings = mp.get_property_native("script-opts")
for _, slider in ipairs(sliders) do
    local name = "ombrique--" .. slider.word
    local value = tonumber(settings[name] or slider.default)
    local good = value and value >= slider.minimum and value <= slider.maximum
    if not good then fail(1, ("%s %s: not within %s"):format(name:sub(9), settings[name], slider.range)) end
    slider.value, slider.keys, settings[name] = good and value or slider.default, {}, nil
end
for name in pairs(settings) do if name:match("^ombrique%-%-") then fail(2, "unknown option " .. name:sub(9)) end end
