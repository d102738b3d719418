"""What the pages of rcpinspect are asked to do in a browser; check-page runs it."""
from page_steps import details, element, expect, is_in_pane, test

BLOCKED = "http://127.0.0.1:9/"


@test("explanation")
def opens_with_the_outcome_and_all_elements_in_order(page):
    assert "Becomes eclipse, as main" in page.text("h1"), page.text("h1")
    expect(len(page.all(".element")), 17)
    texts = [node.get_attribute("textContent") for node in page.all(".element .text")]
    expect(texts[1:4], ["-data", "/home/ann/my work", "-application"])
    for section in ("environment", "changes", "dropped", "records"):
        assert page.one("#" + section).is_displayed()
    page.shoot("explain-light")


@test("explanation")
def a_line_leads_from_every_source_to_its_element(page):
    page.settle()
    assert len(page.all(".picture .lines path.source")) >= 8
    element(page, 11).click()
    page.settle()
    expect(len(page.all(".picture .lines path.source.stands")), 1)
    expect(len(page.all(".picture .lines path.instead.stands:not([data-mark])")), 2)


@test("explanation")
def a_chosen_element_shows_its_rule_source_and_losers(page):
    element(page, 11).click()
    text = details(page, 11).text
    for wanted in ("the first source of a name wins", "rcp/rcplauncher.properties, line 18",
                   "vmarg.sample.heap=-Xmx128m", "-Xmx64m", "rcp/jvm.properties, line 3",
                   "rcplauncher.properties is read before jvm.properties", "-Xmx32m"):
        assert wanted in text, f"{wanted!r} is not in {text!r}"
    source = page.all(".sources .is-source")
    expect(len(source), 1)
    assert "-Xmx128m" in source[0].text
    assert is_in_pane(page, source[0])
    expect(sorted(node.find_element(page.By.CSS_SELECTOR, ".value").text
                  for node in page.all(".sources .is-instead")), ["-Xmx32m", "-Xmx64m"])
    page.shoot("explain-chosen")
    element(page, 11).click()
    assert not details(page, 11).is_displayed()
    expect(page.all(".sources .is-source"), [])


@test("explanation")
def placeholders_are_shown_with_their_source(page):
    element(page, 12).click()
    text = details(page, 12).text
    assert "${workspace.location} → /home/ann/my work" in text, text
    assert "command line 5" in text, text
    assert "/home/ann/my work" in page.one(".sources .is-placeholder").text


@test("explanation")
def links_lead_from_element_to_source_and_back(page):
    element(page, 2).click()
    details(page, 2).find_element(page.By.XPATH, ".//button[contains(., 'line 8')]").click()
    loser = page.driver.switch_to.active_element
    assert "rcp.data" in loser.text, loser.text
    assert is_in_pane(page, loser)
    page.one(".sources").find_element(page.By.XPATH, ".//button[normalize-space()='→ 14']").click()
    assert details(page, 14).is_displayed()
    assert not details(page, 2).is_displayed()
    assert page.driver.current_url.endswith("#element-14")


@test("explanation")
def links_lead_from_a_loser_to_its_winner(page):
    first, second = page.all(".sources .is-overridden")[1:]
    first.find_element(page.By.TAG_NAME, "button").click()
    assert details(page, 11).is_displayed()
    second.find_element(page.By.TAG_NAME, "button").click()
    expect(page.driver.switch_to.active_element, first)


@test("explanation")
def an_address_with_an_element_opens_it(page):
    page.open("#element-12")
    assert details(page, 12).is_displayed()


@test("explanation")
def the_contents_lead_to_every_section(page):
    for link in page.all("#contents a"):
        link.click()
        target = page.one("#" + link.get_attribute("href").split("#")[1])
        assert page.run("const top = arguments[0].getBoundingClientRect().top;"
                        "return top >= 0 && top < innerHeight", target), link.text


@test("explanation")
def search_filters_elements_lines_and_sections(page):
    page.search("heap")
    expect([node.get_attribute("id") for node in page.seen(".element")], ["element-11"])
    expect(len(page.seen(".entry")), 3)
    assert "1 of 17 arguments" in page.text("#found"), page.text("#found")
    expect(len(page.seen(".card")), 2)
    page.search("SAMPLE_REMOVED")
    expect(page.seen(".element"), [])
    expect(len(page.seen("#environment .row")), 1)
    page.search("no such thing")
    expect(page.text("#found"), "nothing found")
    expect([link.text for link in page.seen("#contents a")], ["Outcome"])
    expect([section.get_attribute("id") for section in page.seen("section")], ["outcome"])
    page.one("#search").send_keys(page.keys.ESCAPE)
    expect(len(page.seen(".element")), 17)
    expect(page.text("#found"), "")


@test("explanation")
def a_link_to_what_is_searched_away_ends_the_search(page):
    page.search("heap")
    element(page, 11).click()
    page.run("location.hash = '#element-1'")
    page.settle()
    assert details(page, 1).is_displayed()
    expect(page.one("#search").get_attribute("value"), "")


@test("explanation")
def everything_works_by_keyboard(page):
    keys = page.keys
    page.one("body").send_keys("/")
    expect(page.driver.switch_to.active_element.get_attribute("id"), "search")
    for _ in range(60):
        page.press(keys.TAB)
        if "head" in page.driver.switch_to.active_element.get_attribute("class").split():
            break
    expect(page.run("return document.activeElement.parentNode.id"), "element-0")
    page.press(keys.ARROW_DOWN, keys.ARROW_DOWN)
    expect(page.run("return document.activeElement.parentNode.id"), "element-2")
    page.press(keys.ENTER)
    assert details(page, 2).is_displayed()
    expect(page.run("return document.activeElement.getAttribute('aria-expanded')"), "true")
    page.press(keys.TAB)
    assert "command line 5" in page.driver.switch_to.active_element.text
    page.press(keys.ENTER)
    assert "/home/ann/my work" in page.driver.switch_to.active_element.text
    page.press(keys.ESCAPE)
    assert not details(page, 2).is_displayed()


@test("explanation")
def hostile_texts_stay_texts(page):
    texts = [node.get_attribute("textContent") for node in page.all(".element .text")]
    assert "-x</script><script>document.title='hostile'</script>" in texts
    assert any("<img src=http://127.0.0.1:9/x" in text for text in texts)
    expect(page.all("main img, main script, main b, main i"), [])
    value = page.one(".sources").text
    assert "<b>bold?</b> ⟨U+202E⟩gnih" in value, value
    assert "⟨tab⟩tab" in value
    assert "\u202e" not in page.run("return document.getElementById('main').textContent")


@test("explanation")
def nothing_is_asked_of_a_network(page):
    element(page, 13).click()
    page.settle()
    asked = page.requests()
    assert asked and all(url == "about:blank" or url.startswith("file:") for url in asked), asked


@test("explanation")
def the_page_may_not_ask_a_network_or_run_foreign_scripts(page):
    blocked = page.driver.execute_async_script("""
        const [address, done] = arguments;
        const blocked = [];
        document.addEventListener('securitypolicyviolation', (event) => {
            blocked.push(event.effectiveDirective);
            if (blocked.length === 4) done(blocked.sort());
        });
        const add = (name, set) => document.body.append(Object.assign(document.createElement(name), set));
        add('img', {src: address});
        add('script', {textContent: "document.title = 'hostile'"});
        add('link', {rel: 'stylesheet', href: address});
        fetch(address).catch(() => {});""", BLOCKED)
    expect(blocked, ["connect-src", "img-src", "script-src-elem", "style-src-elem"])
    page.complaints()  # the browser tells of each


@test("explanation")
def dark_and_light_follow_the_system(page):
    def brightness(selector, which):
        return page.run("""const color = getComputedStyle(document.querySelector(arguments[0]))[arguments[1]];
            return color.match(/\\d+/g).slice(0, 3).map(Number).reduce((a, b) => a + b);""", selector, which)
    assert brightness("body", "backgroundColor") > 600 > 200 > brightness("body", "color")
    page.prefer("dark")
    assert brightness("body", "backgroundColor") < 150 < 500 < brightness("body", "color")
    page.open("#element-11")
    page.shoot("explain-dark")


@test("explanation")
def a_narrow_window_needs_no_sideways_scrolling(page):
    for width in (320, 480, 900):
        page.width(width)
        page.open("#element-11")
        page.settle()
        actual = page.run("return document.documentElement.scrollWidth")
        assert actual <= width, f"{actual} at {width}"
    page.width(420, 1600)
    page.open()
    element(page, 11).click()
    page.shoot("explain-narrow")


@test("explanation")
def paper_has_all_details(page):
    element(page, 11).click()
    page.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": "print"})
    page.run("window.dispatchEvent(new Event('beforeprint'))")
    assert "-data on the command line replaces the property rcp.data" in details(page, 2).text
    page.width(720, 1800)
    page.shoot("explain-paper")
    page.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": ""})


@test("fatal")
def a_fatal_end_comes_with_its_record_and_cause(page):
    assert "Ends with an error, status 255" in page.text("h1"), page.text("h1")
    outcome = page.text("#outcome")
    for wanted in ("ZYPRA0000E: a record", "Something is missing. Put it behind -vm.", "for the platform", "123"):
        assert wanted in outcome, f"{wanted!r} is not in {outcome!r}"
    assert "None: the launch ends before" in page.text(".results")
    assert "is not there" in page.text(".card.missing")
    page.shoot("explain-fatal")


@test("fatal")
def a_source_in_a_file_that_is_not_listed_has_a_line_too(page):
    card = page.one(".sources").find_element(page.By.XPATH, ".//div[@class='list'][contains(., 'Info.plist')]")
    assert "Minimum=9" in card.text, card.text


@test("clean")
def nothing_found_is_said(page):
    expect(page.text("h1"), "✔ Nothing found")
    expect(page.all(".finding"), [])


@test("refused")
def a_program_that_cannot_be_started_is_no_outcome(page):
    expect(page.text("h1"), "■ Ends")
    assert "It was on its way to /opt/velmo/rcp/eclipse/eclipse" in page.text("#outcome")
    texts = [node.text.splitlines() for node in page.all("#handOff .row")]
    expect([text[0] for text in texts], ["✖ 1 fault", "✔ usable"])
    assert "RI701 it is for another machine" in texts[0], texts[0]


@test("computed")
def where_the_rehearsal_ends_is_said(page):
    assert "what the platform does then is not rehearsed" in page.text("#outcome")


@test("refused")
def what_was_taken_out_is_listed(page):
    expect([node.text.splitlines() for node in page.all("#redacted .row")],
           [["3 times", "proxy.password <redacted:1f2e>"], ["1 time", "home directory"]])
    expect(page.all("#contents a")[-1].text, "Redacted (2)")


@test("fatal")
def what_brought_an_end_about_is_linked(page):
    page.one("#outcome .jump").click()
    assert "Minimum=9" in page.driver.switch_to.active_element.text


@test("fatal")
def a_path_that_is_put_together_names_the_source_of_each_part(page):
    text = page.text("#environment .row")
    assert "1 Info.plist:7" in text and "2 environment Y" in text, text


@test("fatal")
def what_a_launch_makes_of_a_value_stands_below_it(page):
    expect([node.text for node in page.all(".sources .effective")], ["becomes /opt/velmo/a"])
    page.search("velmo/a")
    expect(page.text("#found"), "1 of 7 lines")


@test("fatal")
def the_head_of_a_page_says_how_it_was_made(page):
    made = page.text(".made")
    for wanted in ("2026-01-02 03:04 UTC", "rcpinspect 1.2.3", "user ann", "locale de_DE.UTF-8"):
        assert wanted in made, f"{wanted!r} is not in {made!r}"
    assert "host" not in made


@test("difference")
def a_host_that_was_told_is_named(page):
    assert "host dawn" in page.text(".made")


@test("report")
def findings_stand_in_groups_by_file(page):
    assert "2 errors and 4 warnings" in page.text("h1"), page.text("h1")
    expect([node.text for node in page.all(".card .title")], [
        "rcp/rcplauncher.properties", "rcp/jvm.properties",
        "rcp/eclipse/plugins/com.ovr.rcp.base/linux/x86_64/eclipse", "The installation"])
    text = page.text("#finding-2")
    for wanted in ("warning", "line 13", "Did you mean jvm.libpath?", "Correct the key", "RI0102", "unknown-key"):
        assert wanted in text, f"{wanted!r} is not in {text!r}"
    assert "line" not in page.text("#finding-5 .where")
    page.shoot("check-light")
    page.prefer("dark")
    page.shoot("check-dark")
    page.width(420, 1600)
    assert page.run("return document.documentElement.scrollWidth") <= 420
    page.shoot("check-narrow")


@test("report")
def search_and_kinds_filter_findings(page):
    page.search("libpath")
    expect([node.get_attribute("id") for node in page.seen(".finding")], ["finding-1", "finding-2"])
    expect(len(page.seen(".card")), 1)
    expect(page.text("#found"), "2 of 6 findings")
    page.search("")
    assert "unknown-key, 2 findings" in page.text("#codes"), page.text("#codes")
    page.one("#codes").find_element(page.By.XPATH, ".//button[.='RI0102']").click()
    expect([node.get_attribute("id") for node in page.seen(".finding")], ["finding-2", "finding-3"])


@test("report")
def links_lead_to_findings_and_files(page):
    page.search("chmod")
    page.run("location.hash = '#finding-4'")
    page.settle()
    assert page.one("#finding-4").is_displayed()
    expect(page.driver.switch_to.active_element.get_attribute("id"), "finding-4")
    page.one("#file-2 button").click()
    expect(page.all("#finding-4"), [])
    page.one("#summary").find_element(page.By.LINK_TEXT, "rcp/jvm.properties").click()
    page.settle()
    assert page.one("#finding-4").is_displayed()


@test("report")
def hostile_findings_stay_texts(page):
    assert "note</script><img src=http://127.0.0.1:9/y" in page.text("#finding-3")
    expect(page.all("main img, main script"), [])
    assert all(url == "about:blank" or url.startswith("file:") for url in page.requests())


@test("difference")
def a_difference_tells_both_ends_and_each_side_of_every_part(page):
    expect(page.text("h1"), "The first ends with ZYPRA0016E; the second provisions first")
    expect(page.text("#summary .record"), "ZYPRA0016E: missing (x, /opt/old/y, line 3)")
    expect([node.text for node in page.all("h2")],
           ["Command line", "Properties", "Files", "Findings of the check"])
    assert "+ only in the second" in page.text("#elements")
    assert "rcp/rcplauncher.properties:9" in page.text("#elements")
    assert "− only in the first" in page.text("#files") and "plugins/<b>old.jar" in page.text("#files")
    page.shoot("difference")


@test("difference")
def differences_are_searched(page):
    page.search("old.jar")
    expect([node.text for node in page.seen(".list .row")], ["− only in the first\nplugins/<b>old.jar"])
    expect([node.text for node in page.seen("h2")], ["Files"])
